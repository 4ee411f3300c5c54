// SPDX-License-Identifier: GPL-3.0-or-later
#include "network/NetworkPorts.h"

#include "network/thread_networkPortsUpdater.h"

#include <QDir>
#include <QFileInfo>

namespace {

void loadFiles(thread_networkPortsUpdater& updater, const QDir& dataDirectory)
{
    constexpr bool isUsersOwn = true;
    const QString fetched = dataDirectory.filePath(QStringLiteral("network-ports.csv"));
    if (!QFileInfo::exists(fetched) || !updater.execute(fetched, !isUsersOwn)) {
        updater.execute(QStringLiteral(":/network-ports.csv"), !isUsersOwn);
    }
    updater.execute(dataDirectory.filePath(QStringLiteral("network-ports-custom.csv")), isUsersOwn);
}

} // namespace

NetworkPorts::NetworkPorts(QObject* parent)
    : QObject(parent)
    , m_updater(new thread_networkPortsUpdater)
{
    m_thread.setObjectName(QStringLiteral("tv-ports"));
    m_updater->moveToThread(&m_thread);
    connect(&m_thread, &QThread::finished, m_updater, &QObject::deleteLater);
    // On the updater's thread, which ends before this object does.
    connect(m_updater, &thread_networkPortsUpdater::loaded, this, &NetworkPorts::handOver,
            Qt::DirectConnection);
    m_thread.start();
}

NetworkPorts::~NetworkPorts()
{
    m_thread.quit();
    m_thread.wait();
}

void NetworkPorts::load(const QString& dataDirectory)
{
    QMetaObject::invokeMethod(
        m_updater,
        [updater = m_updater, dataDirectory] { loadFiles(*updater, QDir(dataDirectory)); },
        Qt::QueuedConnection);
}

void NetworkPorts::handOver(const QHash<int, QString>& tcp, const QHash<int, QString>& udp)
{
    const auto take = [this, descriptions = PortDescriptions{tcp, udp}] {
        m_descriptions = descriptions;
        Q_EMIT changed();
    };
    QMetaObject::invokeMethod(this, take, Qt::QueuedConnection);
}
