// SPDX-License-Identifier: GPL-3.0-or-later
#include "network/thread_networkPortsUpdater.h"

#include "base/Format.h"
#include "base/Log.h"
#include "network/PortDescriptionFile.h"

#include <QFile>
#include <QFileInfo>

#include <optional>

namespace {

/// The content of a file; empty, and a line in the log, where it cannot be had.
std::optional<QByteArray> read(const QString& path)
{
    QFile file(path);
    // To open a pipe would be to wait for whoever writes into it.
    if (!QFileInfo(file).isFile() || !file.open(QIODevice::ReadOnly)) {
        Log::warn("Unable to open network ports description file ({}). The client will not be able "
                  "to translate port numbers to human readable form.",
                  path);
        return std::nullopt;
    }
    if (file.size() > thread_networkPortsUpdater::MostBytes) {
        Log::warn("Network ports description file ({}) is larger than {} and not used.", path,
                  Format::bytes(thread_networkPortsUpdater::MostBytes));
        return std::nullopt;
    }
    return file.read(thread_networkPortsUpdater::MostBytes);
}

void log(const PortDescriptionFile::Fault& fault, const QString& file)
{
    switch (fault.kind) {
    case PortDescriptionFile::Fault::Kind::MalformedLine:
        Log::warn("{}: Malformed line, skipping it: {}", file, fault.text);
        return;
    case PortDescriptionFile::Fault::Kind::PortNotANumber:
        Log::warn("{}: Port number is not a number ({}), found on line {}, ignoring line.", file,
                  fault.text, fault.line);
        return;
    case PortDescriptionFile::Fault::Kind::UnknownProtocol:
        Log::warn("{}: Unknown protocol ({}) found on line {}, ignoring it.", file, fault.text,
                  fault.line);
        return;
    }
}

void log(const PortDescriptionFile& content, const QString& name)
{
    // "Network-ports.csv", or the name of the user's own file in the same way.
    const QString heading = name.left(1).toUpper() + name.mid(1);
    for (const PortDescriptionFile::Fault& fault : content.faults) {
        log(fault, heading);
    }
    if (content.faultCount > content.faults.size()) {
        Log::warn("{}: Ignored {} further lines with such faults.", heading,
                  content.faultCount - content.faults.size());
    }
    Log::info("Read file '{}' for port (TCP/UDP) translations. Read {} lines, added {} tcp and {} "
              "udp records.",
              name, content.lines, content.descriptions.tcp.size(),
              content.descriptions.udp.size());
}

} // namespace

bool thread_networkPortsUpdater::execute(const QString& path, bool isUsersOwn)
{
    PortDescriptions& descriptions = isUsersOwn ? m_usersOwn : m_default;
    if (!QFileInfo::exists(path)) {
        if (isUsersOwn) {
            set(descriptions, {});
            return true;
        }
        Log::warn("Network ports description file ({}) does not exist! The client will not be able "
                  "to translate port numbers to human readable form.",
                  path);
        return false;
    }
    const std::optional<QByteArray> text = read(path);
    if (!text) {
        return false;
    }
    const PortDescriptionFile content = PortDescriptionFile::parse(*text);
    log(content, QFileInfo(path).fileName());
    set(descriptions, content.descriptions);
    return true;
}

void thread_networkPortsUpdater::set(PortDescriptions& loadedBefore,
                                     const PortDescriptions& descriptions)
{
    loadedBefore = descriptions;
    const PortDescriptions together = m_default.overlaidBy(m_usersOwn);
    Q_EMIT loaded(together.tcp, together.udp);
}
