// SPDX-License-Identifier: GPL-3.0-or-later
#include "network/PortDescriptionFile.h"

#include <charconv>
#include <limits>
#include <optional>

namespace {

constexpr char Separator = ';';

/// A line cut at its first two separators.
struct Fields
{
    explicit Fields(QByteArrayView line)
    {
        const qsizetype first = line.indexOf(Separator);
        const qsizetype second = first < 0 ? -1 : line.indexOf(Separator, first + 1);
        complete = second >= 0;
        if (first >= 0) {
            port = line.first(first).trimmed();
            transport = line.first(complete ? second : line.size()).sliced(first + 1).trimmed();
        }
        if (complete) {
            description = line.sliced(second + 1).trimmed();
        }
    }

    bool isHeading() const
    {
        return port == QByteArrayView("Port") && transport == QByteArrayView("Transport");
    }

    bool complete = false;
    QByteArrayView port;
    QByteArrayView transport;
    QByteArrayView description;
};

/// A TCP or UDP port in decimal digits.
std::optional<int> portNumber(QByteArrayView field)
{
    unsigned short port = 0;
    const auto [end, error] = std::from_chars(field.begin(), field.end(), port);
    return error == std::errc() && end == field.end() ? std::optional<int>(port) : std::nullopt;
}

} // namespace

PortDescriptionFile PortDescriptionFile::parse(QByteArrayView text)
{
    constexpr QByteArrayView byteOrderMark("\xef\xbb\xbf");
    if (text.startsWith(byteOrderMark)) {
        text = text.sliced(byteOrderMark.size());
    }
    PortDescriptionFile file;
    while (!text.isEmpty()) {
        const qsizetype end = text.indexOf('\n');
        ++file.lines;
        file.addLine((end < 0 ? text : text.first(end)).trimmed());
        text = end < 0 ? QByteArrayView() : text.sliced(end + 1);
    }
    return file;
}

void PortDescriptionFile::addLine(QByteArrayView line)
{
    if (line.isEmpty()) {
        return;
    }
    const Fields fields(line);
    if (fields.isHeading()) {
        return;
    }
    if (!fields.complete) {
        addFault(Fault::Kind::MalformedLine, line);
        return;
    }
    const std::optional<int> number = portNumber(fields.port);
    if (!number) {
        addFault(Fault::Kind::PortNotANumber, fields.port);
        return;
    }
    const bool isTcp = fields.transport == QByteArrayView("TCP");
    if (!isTcp && fields.transport != QByteArrayView("UDP")) {
        addFault(Fault::Kind::UnknownProtocol, fields.transport);
        return;
    }
    QHash<int, QString>& table = isTcp ? descriptions.tcp : descriptions.udp;
    table.insert(*number, QString::fromUtf8(fields.description));
}

void PortDescriptionFile::addFault(Fault::Kind kind, QByteArrayView text)
{
    constexpr qsizetype mostBytesKept = 200;
    ++faultCount;
    if (faults.size() < MostFaultsKept) {
        faults.append(
            {kind, QString::fromUtf8(text.first(qMin(text.size(), mostBytesKept))), lines});
    }
}
