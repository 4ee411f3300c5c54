// SPDX-License-Identifier: GPL-3.0-or-later
// The text of the files that describe ports.
#include "network/PortDescriptionFile.h"

#include <algorithm>
#include <cstdlib>

namespace {

bool isPort(int number)
{
    constexpr int last = 65535;
    return number >= 0 && number <= last;
}

bool holdsPortsOnly(const QHash<int, QString>& table)
{
    return std::all_of(table.keyBegin(), table.keyEnd(), isPort);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const auto file =
        PortDescriptionFile::parse(QByteArrayView(data, static_cast<qsizetype>(size)));
    const PortDescriptions& known = file.descriptions;
    const bool isConsistent = holdsPortsOnly(known.tcp) && holdsPortsOnly(known.udp) &&
                              known.tcp.size() + known.udp.size() + file.faultCount <= file.lines &&
                              file.faults.size() <= file.faultCount;
    if (!isConsistent) {
        std::abort();
    }
    return 0;
}
