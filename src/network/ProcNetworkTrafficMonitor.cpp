// SPDX-License-Identifier: GPL-3.0-or-later
#include "network/ProcNetworkTrafficMonitor.h"

#include "base/Log.h"
#include "network/NetworkInterfaces.h"

#include <QDir>
#include <QFile>
#include <QNetworkInterface>

#include <algorithm>
#include <chrono>
#include <utility>

namespace {

constexpr std::chrono::milliseconds RecordLifetime{60'000};
constexpr qint64 LongestFile = qint64{4} << 20;

/// What lower layers add to each packet is counted by the kernel, and is no traffic of the user's.
constexpr double CountedShare = 0.95;

/// 0 where there is no such interface.
int indexOf(const QString& name)
{
    return QNetworkInterface::interfaceIndexFromName(name);
}

quint64 delta(quint64 last, quint64 current)
{
    return static_cast<quint64>(static_cast<double>(current - last) * CountedShare);
}

bool hasGrown(const InterfaceCounters& last, const InterfaceCounters& current)
{
    return current.received >= last.received && current.transmitted >= last.transmitted;
}

} // namespace

ProcNetworkTrafficMonitor::ProcNetworkTrafficMonitor(const QString& root, QObject* parent)
    : QObject(parent)
    , m_root(QDir(root).absolutePath())
    , m_isSupported(QFile::exists(pathOf(QStringLiteral("proc/net/dev"))))
{
    Log::info("Fallback to ProcNetworkTrafficMonitor. Only interface statistics available.");
}

QList<InterfaceBandwidth> ProcNetworkTrafficMonitor::getInterfacesCounters()
{
    const QList<InterfaceCounters> all =
        interfaceCounters(read(pathOf(QStringLiteral("proc/net/dev"))));
    renewRecords(all);
    const QHash<QString, LastSeen> last = std::exchange(m_lastSeen, {});
    QList<InterfaceBandwidth> result;
    for (const InterfaceCounters& current : all) {
        InterfaceBandwidth bandwidth;
        bandwidth.interface = m_records.value(current.name);
        const int index = bandwidth.interface.index;
        const auto seen = last.constFind(current.name);
        if (seen != last.constEnd() && seen->index == index && hasGrown(seen->counters, current)) {
            bandwidth.total.download = delta(seen->counters.received, current.received);
            bandwidth.total.upload = delta(seen->counters.transmitted, current.transmitted);
        }
        bandwidth.internet = bandwidth.total;
        m_lastSeen.insert(current.name, {current, index});
        result.append(bandwidth);
    }
    return result;
}

/// Asked for every second, the records are made anew only once a minute or for other interfaces.
void ProcNetworkTrafficMonitor::renewRecords(const QList<InterfaceCounters>& all)
{
    const auto isKnown = [this](const InterfaceCounters& one) {
        const auto record = m_records.constFind(one.name);
        return record != m_records.constEnd() && record->index == indexOf(one.name);
    };
    if (m_recordsAge.isValid() && !m_recordsAge.hasExpired(RecordLifetime.count()) &&
        std::all_of(all.begin(), all.end(), isKnown)) {
        return;
    }
    m_recordsAge.start();
    m_records.clear();
    const QHash<QString, Interface> existing = existingInterfaces();
    for (const InterfaceCounters& one : all) {
        m_records.insert(one.name, recordOf(one.name, existing.value(one.name).ip_list));
    }
}

QString ProcNetworkTrafficMonitor::pathOf(const QString& path) const
{
    return QDir(m_root).filePath(path);
}

QHash<QString, Interface> ProcNetworkTrafficMonitor::existingInterfaces() const
{
    QHash<QString, Interface> byName;
    for (const Interface& interface : networkInterfaces(pathOf(QStringLiteral("sys/class/net")))) {
        byName.insert(interface.name, interface);
    }
    return byName;
}

Interface ProcNetworkTrafficMonitor::recordOf(const QString& name, const QStringList& addresses)
{
    Interface record;
    record.name = name;
    record.description = name;
    record.index = indexOf(name);
    record.wifi = name.startsWith(QLatin1String("wlan"));
    const QString path = pathOf(QStringLiteral("sys/class/net/%1/address").arg(name));
    record.mac_address = QString::fromLatin1(read(path)).trimmed().toUpper();
    for (const QString& address : addresses) {
        if (!address.startsWith(QLatin1String("FE80"), Qt::CaseInsensitive)) {
            record.ip_list.append(address);
        }
    }
    return record;
}

/// Tells once of a file that cannot be read, until it could be.
QByteArray ProcNetworkTrafficMonitor::read(const QString& path)
{
    QFile file(path);
    if (file.open(QIODevice::ReadOnly)) {
        m_unreadable.remove(path);
        return file.read(LongestFile);
    }
    if (!m_unreadable.contains(path)) {
        m_unreadable.insert(path);
        Log::warn("Failed to open: {}", path);
    }
    return {};
}
