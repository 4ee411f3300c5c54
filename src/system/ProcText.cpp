// SPDX-License-Identifier: GPL-3.0-or-later
#include "system/ProcText.h"

#include "system/TextLines.h"

#include <QFile>

#include <array>

namespace {

constexpr qint64 LongestFile = qint64{4} << 20;

/// The text after `key` and a colon, as in "model name\t: Name"; null when `line` has another key.
QByteArrayView valueOf(QByteArrayView line, QByteArrayView key)
{
    if (!line.startsWith(key)) {
        return {};
    }
    const QByteArrayView rest = line.sliced(key.size()).trimmed();
    return rest.startsWith(':') ? rest.sliced(1).trimmed() : QByteArrayView();
}

/// The number that `text` begins with; empty when it begins with none or one beyond 64 bits.
std::optional<qint64> leadingNumber(QByteArrayView text)
{
    text = text.trimmed();
    qsizetype digits = 0;
    while (digits < text.size() && text.at(digits) >= '0' && text.at(digits) <= '9') {
        ++digits;
    }
    bool ok = false;
    const qint64 number = text.first(digits).toByteArray().toLongLong(&ok);
    return ok ? std::optional(number) : std::nullopt;
}

/// The word of number `index`, counted from 0, in a line whose words stand between spaces.
QByteArrayView word(QByteArrayView line, int index)
{
    for (;; --index) {
        line = line.trimmed();
        const qsizetype end = line.indexOf(' ');
        if (index == 0 || end < 0) {
            return index == 0 ? (end < 0 ? line : line.first(end)) : QByteArrayView();
        }
        line = line.sliced(end);
    }
}

} // namespace

QByteArray ProcText::read(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.read(LongestFile) : QByteArray();
}

std::optional<qint64> ProcText::bootSeconds(QByteArrayView stat)
{
    constexpr QByteArrayView key("btime ");
    std::optional<qint64> seconds;
    forEachLine(stat, [&](QByteArrayView line) {
        if (line.startsWith(key)) {
            seconds = leadingNumber(line.sliced(key.size()));
        }
        return seconds.has_value();
    });
    return seconds;
}

std::optional<qint64> ProcText::memoryKib(QByteArrayView meminfo)
{
    std::optional<qint64> kib;
    forEachLine(meminfo, [&](QByteArrayView line) {
        kib = leadingNumber(valueOf(line, "MemTotal"));
        return kib.has_value();
    });
    return kib;
}

QString ProcText::processorName(QByteArrayView cpuinfo)
{
    // x86 and others; 32-bit ARM; Raspberry Pi; PowerPC; RISC-V.
    constexpr std::array<QByteArrayView, 5> keys{"model name", "Processor", "Model", "cpu",
                                                 "uarch"};
    for (const QByteArrayView key : keys) {
        QString name;
        forEachLine(cpuinfo, [&](QByteArrayView line) {
            name = QString::fromUtf8(valueOf(line, key)).simplified();
            return !name.isEmpty();
        });
        if (!name.isEmpty()) {
            return name;
        }
    }
    return {};
}

int ProcText::establishedConnections(QByteArrayView table)
{
    constexpr int stateColumn = 3;
    constexpr QByteArrayView established("01"); // TCP_ESTABLISHED of linux/net/tcp_states.h
    int count = 0;
    forEachLine(table, [&](QByteArrayView line) {
        count += word(line, stateColumn) == established ? 1 : 0;
        return false;
    });
    return count;
}

QByteArrayView ProcText::firstArgument(QByteArrayView commandLine)
{
    const qsizetype end = commandLine.indexOf('\0');
    return end < 0 ? commandLine : commandLine.first(end);
}

QString ProcText::osReleaseValue(QByteArrayView text, QByteArrayView key)
{
    QByteArray value;
    forEachLine(text, [&](QByteArrayView line) {
        if (!line.startsWith(key) || line.size() <= key.size() || line.at(key.size()) != '=') {
            return false;
        }
        const QByteArrayView raw = line.sliced(key.size() + 1).trimmed();
        char quote = 0;
        for (qsizetype i = 0; i < raw.size(); ++i) {
            const char letter = raw.at(i);
            if (letter == quote || (quote == 0 && (letter == '"' || letter == '\''))) {
                quote = quote == 0 ? letter : '\0';
            } else if (letter == '\\' && quote != '\'' && i + 1 < raw.size()) {
                value += raw.at(++i);
            } else {
                value += letter;
            }
        }
        return true;
    });
    return QString::fromUtf8(value);
}
