// SPDX-License-Identifier: GPL-3.0-or-later
// The parsers of what the kernel, the X display and the desktop's files say.
#include "system/ExecLine.h"
#include "system/HardwareIds.h"
#include "system/InputDevicesText.h"
#include "system/ProcText.h"
#include "system/WindowProperty.h"

#include <cstdlib>
#include <initializer_list>
#include <span>

namespace {

void parseAsText(QByteArrayView text)
{
    ProcText::bootSeconds(text);
    ProcText::memoryKib(text);
    ProcText::processorName(text);
    if (ProcText::establishedConnections(text) > text.count('\n') + 1) {
        std::abort(); // More connections than lines.
    }
    ProcText::firstArgument(text);
    ProcText::osReleaseValue(text, "PRETTY_NAME");
    parseInputDevices(text);
    HardwareIds::hexNumber(text);
    HardwareIds::modelText(text);
    for (const quint16 vendor : std::initializer_list<quint16>{0x0000, 0x8086, 0xffff}) {
        HardwareIds::find(text, vendor, 0x5916);
    }
}

void parseAsExecLine(QByteArrayView text)
{
    const QString line = QString::fromUtf8(text);
    ExecLine::program(ExecLine::words(line));
    // What is quoted comes back as it was, unless it was nothing.
    if (!line.isEmpty() && ExecLine::words(ExecLine::quoted(line)) != QStringList{line}) {
        std::abort();
    }
}

/// The first two bytes give the type and how many items are claimed, the rest is the data.
void parseAsProperty(QByteArrayView bytes)
{
    if (bytes.size() < 2) {
        return;
    }
    const QByteArrayView data = bytes.sliced(2);
    const WindowProperty property{
        static_cast<quint8>(bytes.at(0)), 32, static_cast<quint64>(bytes.at(1)),
        std::as_bytes(std::span(data.data(), static_cast<size_t>(data.size())))};
    propertyValues(property, 33);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QByteArrayView input(data, static_cast<qsizetype>(size));
    parseAsText(input);
    parseAsExecLine(input);
    parseAsProperty(input);
    return 0;
}
