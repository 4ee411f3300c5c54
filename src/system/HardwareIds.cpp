// SPDX-License-Identifier: GPL-3.0-or-later
#include "system/HardwareIds.h"

#include <QByteArray>

#include <array>

namespace {

/// The name after the four digits of `id` and two spaces; null when `line` begins with another id.
QByteArrayView nameAfter(QByteArrayView line, QByteArrayView id)
{
    return line.startsWith(id) && line.size() > id.size() && line.at(id.size()) == ' '
               ? line.sliced(id.size()).trimmed()
               : QByteArrayView();
}

QByteArray fourDigits(unsigned short number)
{
    return QByteArray::number(number, 16).rightJustified(4, '0');
}

/// The position after the line feed that ends the line at `from`; the end of `text` without one.
qsizetype nextLine(QByteArrayView text, qsizetype from)
{
    const qsizetype end = text.indexOf('\n', from);
    return end < 0 ? text.size() : end + 1;
}

/// Where the line of a vendor begins, or -1.
qsizetype vendorLine(QByteArrayView ids, const QByteArray& vendor)
{
    if (!nameAfter(ids.first(nextLine(ids, 0)), vendor).isNull()) {
        return 0;
    }
    const qsizetype found = ids.indexOf('\n' + vendor + "  ");
    return found < 0 ? -1 : found + 1;
}

} // namespace

HardwareIds::Names HardwareIds::find(QByteArrayView ids, unsigned short vendor,
                                     unsigned short device)
{
    Names names;
    qsizetype at = vendorLine(ids, fourDigits(vendor));
    if (at < 0) {
        return names;
    }
    const qsizetype vendorEnd = nextLine(ids, at);
    names.vendor = QString::fromUtf8(nameAfter(ids.sliced(at, vendorEnd - at), fourDigits(vendor)));
    const QByteArray wanted = '\t' + fourDigits(device);
    for (at = vendorEnd; at < ids.size() && (ids.at(at) == '\t' || ids.at(at) == '#');) {
        const qsizetype end = nextLine(ids, at);
        const QByteArrayView name = nameAfter(ids.sliced(at, end - at), wanted);
        if (!name.isNull()) {
            names.device = QString::fromUtf8(name);
            break;
        }
        at = end;
    }
    return names;
}

unsigned int HardwareIds::hexNumber(QByteArrayView text)
{
    // Read as base 16, which accepts a leading "0x".
    return text.trimmed().toByteArray().toUInt(nullptr, 16);
}

QString HardwareIds::modelText(QByteArrayView text)
{
    // The device tree's texts end with a zero byte.
    const qsizetype end = text.indexOf('\0');
    QString line = QString::fromUtf8(end < 0 ? text : text.first(end)).simplified();
    static constexpr std::array fillers{"to be filled by o.e.m.",
                                        "system product name",
                                        "system manufacturer",
                                        "system version",
                                        "default string",
                                        "not specified",
                                        "not applicable",
                                        "o.e.m.",
                                        "oem",
                                        "none",
                                        "n/a",
                                        "undefined",
                                        "unknown",
                                        "invalid"};
    for (const char* filler : fillers) {
        if (line.compare(QLatin1String(filler), Qt::CaseInsensitive) == 0) {
            return {};
        }
    }
    return line;
}
