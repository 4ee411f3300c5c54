// SPDX-License-Identifier: GPL-3.0-or-later
#include "network/NetworkCapture.h"

#include "base/FileDescriptor.h"
#include "base/Log.h"
#include "network/NetworkChanges.h"
#include "network/PcapLibrary.h"
#include "network/PcapNetworkTrafficMonitor.h"
#include "network/PfRingNetworkTrafficMonitor.h"
#include "network/ProcNetworkTrafficMonitor.h"

#include <QCoreApplication>
#include <QRegularExpression>

#include <sys/socket.h>

#include <cerrno>
#include <utility>

namespace {

/// As one word of a shell's command line.
QString shellWord(QString text)
{
    static const QRegularExpression special(QStringLiteral("[^A-Za-z0-9/._+-]"));
    if (!text.contains(special)) {
        return text;
    }
    return QLatin1Char('\'') + text.replace(QLatin1Char('\''), QLatin1String("'\\''")) +
           QLatin1Char('\'');
}

/// Empty where it is not the right that is missing. The right belongs to the program's file, and so
/// outlives neither an update nor a build.
QString capabilityCommand()
{
    const FileDescriptor probe(socket(AF_PACKET, SOCK_DGRAM | SOCK_CLOEXEC, 0));
    if (probe.isValid() || errno != EPERM) {
        return {};
    }
    return QStringLiteral("sudo setcap cap_net_raw+ep ") +
           shellWord(QCoreApplication::applicationFilePath());
}

NetworkCapture::BackEnds systemBackEnds(const QString& root)
{
    return {
        .packetRing = [root] { return std::make_unique<PfRingNetworkTrafficMonitor>(root); },
        .pcap = [] { return std::make_unique<PcapNetworkTrafficMonitor>(); },
        .counters = [root] { return std::make_unique<ProcNetworkTrafficMonitor>(root); },
        .isPcapMissing = [] { return w_pcap_create == nullptr; },
        .command = capabilityCommand(),
    };
}

QString nameOf(CaptureState::BackEnd backEnd)
{
    switch (backEnd) {
    case CaptureState::BackEnd::PacketRing:
        return QStringLiteral("packet ring");
    case CaptureState::BackEnd::Pcap:
        return QStringLiteral("libpcap");
    case CaptureState::BackEnd::Counters:
        break;
    }
    return QStringLiteral("interface totals only");
}

} // namespace

NetworkCapture::NetworkCapture(const QString& root)
    : NetworkCapture(systemBackEnds(root))
{
}

NetworkCapture::NetworkCapture(BackEnds backEnds)
    : m_backEnds(std::move(backEnds))
    , m_packets(m_backEnds.packetRing())
{
    if (!m_packets->isSupported()) {
        m_kind = Packets::Pcap;
        m_packets = m_backEnds.pcap();
        beginCounters();
    }
}

NetworkCapture::~NetworkCapture()
{
    if (m_isStarted) {
        stop();
    }
}

void NetworkCapture::beginCounters()
{
    if (!m_counters) {
        m_counters = m_backEnds.counters();
    }
    // What passed before is nobody's: the statistics were off.
    m_counters->getInterfacesCounters();
}

void NetworkCapture::start()
{
    if (m_isStarted) {
        return;
    }
    m_isStarted = true;
    m_packets->start();
    if (m_kind == Packets::Pcap) {
        m_changes = std::make_unique<NetworkChanges>();
        QObject::connect(m_changes.get(), &NetworkChanges::changed, m_changes.get(),
                         [this] { updateNetworkDevices(); });
    }
    m_wasCapturing = isCapturing();
    if (m_kind == Packets::Pcap || !m_wasCapturing) {
        beginCounters();
    }
    m_lastLine.clear();
    logState();
}

void NetworkCapture::stop()
{
    m_changes.reset();
    m_packets->stop();
    m_isStarted = false;
}

void NetworkCapture::updateNetworkDevices()
{
    m_packets->updateNetworkDevices();
    if (m_isStarted) {
        logState();
    }
}

CaptureState NetworkCapture::state() const
{
    const bool captures = m_isStarted ? isCapturing() : m_packets->isSupported();
    if (captures && m_kind == Packets::Ring) {
        return {.backEnd = CaptureState::BackEnd::PacketRing};
    }
    return {
        .backEnd = captures ? CaptureState::BackEnd::Pcap : CaptureState::BackEnd::Counters,
        .reason = reason(),
        .pcapMissing = m_kind == Packets::Pcap && m_backEnds.isPcapMissing(),
        .command = m_kind == Packets::Pcap ? m_backEnds.command : QString(),
    };
}

QString NetworkCapture::reason() const
{
    if (m_kind == Packets::Ring) {
        return QStringLiteral("The packet ring could not be set up.");
    }
    return m_backEnds.command.isEmpty()
               ? QStringLiteral("This system has no packet sockets.")
               : QStringLiteral("This program may not open packet sockets.");
}

/// Only where it says something new: an interface that comes or goes seldom changes it.
void NetworkCapture::logState()
{
    const CaptureState now = state();
    QString line = nameOf(now.backEnd);
    if (!now.reason.isEmpty()) {
        line += QStringLiteral(". ") + now.reason;
    }
    if (!now.command.isEmpty()) {
        line += QStringLiteral(" To let it, run this once and start it again: ") + now.command;
    }
    if (std::exchange(m_lastLine, line) != line) {
        Log::info("Network capture: {}", line);
    }
}

QList<InterfaceBandwidth> NetworkCapture::takeInterfacesCounters()
{
    if (!m_counters) {
        return {};
    }
    const bool wasCapturing = std::exchange(m_wasCapturing, isCapturing());
    const QList<InterfaceBandwidth> taken = m_counters->getInterfacesCounters();
    return wasCapturing || m_wasCapturing ? QList<InterfaceBandwidth>() : taken;
}
