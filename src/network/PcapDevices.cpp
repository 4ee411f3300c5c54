// SPDX-License-Identifier: GPL-3.0-or-later
#include "network/PcapDevices.h"

#include "network/PcapLibrary.h"

#include <QHash>
#include <QHostAddress>
#include <QNetworkInterface>

#include <linux/if_packet.h>
#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <cstring>

namespace {

constexpr qsizetype InterfaceLimit = 200;

bool containsAny(const QString& text, std::initializer_list<QLatin1String> words)
{
    return std::any_of(words.begin(), words.end(), [&text](QLatin1String word) {
        return text.contains(word, Qt::CaseInsensitive);
    });
}

bool isUnsupported(const QString& text)
{
    return containsAny(text, {QLatin1String("Hamachi"), QLatin1String("Bluetooth"),
                              QLatin1String("WAN Miniport"), QLatin1String("Tunnel"),
                              QLatin1String("Pseudo"), QLatin1String("Personal Area Network"),
                              QLatin1String("Virtualbox"), QLatin1String("VMnet")});
}

bool isWireless(const QString& description)
{
    return containsAny(description,
                       {QLatin1String("wireless"), QLatin1String("wlan"), QLatin1String("54MBps")});
}

/// What the rules call the description.
const QString& textOf(const PcapDevice& device)
{
    return device.description.isEmpty() ? device.interface.name : device.description;
}

QString withoutScope(QHostAddress address)
{
    address.setScopeId({});
    return address.toString();
}

/// Link-layer addresses are among the others, as packet(7) describes them.
void addAddress(SystemInterface& interface, const sockaddr* address)
{
    if (!address) {
        return;
    }
    if (address->sa_family == AF_PACKET) {
        sockaddr_ll link{};
        std::memcpy(&link, address, sizeof link);
        const QByteArray bytes(reinterpret_cast<const char*>(link.sll_addr),
                               std::min<qsizetype>(link.sll_halen, sizeof link.sll_addr));
        interface.hardwareAddress = QString::fromLatin1(bytes.toHex(':')).toUpper();
        interface.index = link.sll_ifindex;
    } else if (address->sa_family == AF_INET || address->sa_family == AF_INET6) {
        interface.addresses.append(withoutScope(QHostAddress(address)));
    }
}

PcapDevice deviceFrom(const pcap_if_t& listed)
{
    PcapDevice device;
    device.interface.name = QString::fromLatin1(listed.name);
    device.interface.isLoopback = (listed.flags & PCAP_IF_LOOPBACK) != 0;
    device.interface.isUp = (listed.flags & PCAP_IF_UP) != 0;
    device.description = QString::fromUtf8(listed.description);
    for (const pcap_addr_t* entry = listed.addresses; entry; entry = entry->next) {
        addAddress(device.interface, entry->addr);
    }
    return device;
}

/// Finds the interface that a device of libpcap stands for.
class Resolver
{
public:
    Resolver(const QList<SystemInterface>& interfaces, Log::Level level)
        : m_level(level)
    {
        for (const SystemInterface& interface : interfaces) {
            m_byName.insert(interface.name, interface);
            m_byIndex.insert(interface.index, interface);
            for (const QString& address : interface.addresses) {
                m_indexByAddress.insert(address, interface.index);
            }
        }
    }

    std::optional<SystemInterface> find(const SystemInterface& wanted) const
    {
        const auto named = m_byName.constFind(wanted.name);
        return named != m_byName.constEnd() ? *named : findByAddress(wanted.addresses);
    }

private:
    std::optional<SystemInterface> findByAddress(const QStringList& addresses) const
    {
        Log::log(m_level, "First attempt in resolving QNetworkInterface unsuccessfull, attempting "
                          "to resolve against it's IP");
        const auto known =
            std::find_if(addresses.begin(), addresses.end(), [this](const QString& address) {
                return m_indexByAddress.contains(address);
            });
        if (known == addresses.end()) {
            Log::log(m_level,
                     "Ignoring unsupported interface: Invalid QNetworkInterface and no index found "
                     "with ip: {}",
                     addresses.join(QStringLiteral(", ")));
            return {};
        }
        return findByIndex(m_indexByAddress.value(*known));
    }

    std::optional<SystemInterface> findByIndex(int index) const
    {
        Log::log(m_level, "Found interface in IP map with index: {}", index);
        const auto interface = m_byIndex.constFind(index);
        if (index == 0 || interface == m_byIndex.constEnd()) {
            Log::log(m_level,
                     "Ignoring unsupported interface: Invalid QNetworkInterface even with index: "
                     "{}",
                     index);
            return {};
        }
        return *interface;
    }

    Log::Level m_level;
    QHash<QString, SystemInterface> m_byName;
    QHash<int, SystemInterface> m_byIndex;
    QHash<QString, int> m_indexByAddress;
};

bool isCapturable(const SystemInterface& interface, Log::Level level)
{
    if (interface.isLoopback) {
        Log::log(level, "Ignoring unsupported interface: it's a loopback");
        return false;
    }
    if (interface.hardwareAddress.isEmpty()) {
        Log::log(level, "Ignoring unsupported interface: hardware address is empty");
        return false;
    }
    return true;
}

/// Addresses that an interface gives itself say nothing to whoever looks at it.
QStringList shownAddresses(const QStringList& addresses)
{
    QStringList shown;
    for (const QString& address : addresses) {
        if (!address.startsWith(QLatin1String("FE80"), Qt::CaseInsensitive) &&
            !address.startsWith(QLatin1String("169."))) {
            shown.append(address);
        }
    }
    return shown;
}

CaptureDevice recordOf(const PcapDevice& device, const SystemInterface& interface)
{
    CaptureDevice result;
    result.interface.mac_address = interface.hardwareAddress.toUpper();
    result.interface.description = textOf(device);
    result.interface.wifi = isWireless(textOf(device));
    result.interface.ip_list = shownAddresses(interface.addresses);
    result.interface.index = interface.index;
    result.interface.name = interface.name;
    result.isUp = interface.isUp;
    return result;
}

std::optional<CaptureDevice> usableDevice(const PcapDevice& device, const Resolver& resolver,
                                          Log::Level level)
{
    Log::log(level, "Pcap found network device: {}",
             (device.interface.name + u' ' + device.description).trimmed());
    if (isUnsupported(textOf(device))) {
        Log::log(level, "Skipping unsupported interface");
        return {};
    }
    const std::optional<SystemInterface> interface = resolver.find(device.interface);
    if (!interface || !isCapturable(*interface, level)) {
        return {};
    }
    return recordOf(device, *interface);
}

QList<SystemInterface> interfacesOf(const QList<PcapDevice>& devices)
{
    Log::warn("Unable to find network interfaces via normal APIs, trying alternative to pcap..");
    QList<SystemInterface> interfaces;
    for (const PcapDevice& device : devices) {
        interfaces.append(device.interface);
    }
    return interfaces;
}

} // namespace

std::optional<QList<PcapDevice>> pcapDevices()
{
    if (!w_pcap_findalldevs || !w_pcap_freealldevs) {
        Log::warn("Unable to resolve pcap_findalldevs or pcap_freealldevs");
        return {};
    }
    pcap_if_t* all = nullptr;
    std::array<char, PCAP_ERRBUF_SIZE> error{};
    if (w_pcap_findalldevs(&all, error.data()) != 0) {
        Log::warn("Error in pcap_findalldevs: {}", error.data());
        return {};
    }
    QList<PcapDevice> devices;
    for (const pcap_if_t* listed = all; listed; listed = listed->next) {
        devices.append(deviceFrom(*listed));
    }
    w_pcap_freealldevs(all);
    return devices;
}

QList<SystemInterface> systemInterfaces()
{
    QList<SystemInterface> result;
    for (const QNetworkInterface& source : QNetworkInterface::allInterfaces()) {
        SystemInterface interface;
        interface.name = source.name();
        interface.index = source.index();
        interface.hardwareAddress = source.hardwareAddress();
        interface.isLoopback = source.flags().testFlag(QNetworkInterface::IsLoopBack);
        interface.isUp = source.flags().testFlag(QNetworkInterface::IsUp);
        for (const QNetworkAddressEntry& entry : source.addressEntries()) {
            interface.addresses.append(withoutScope(entry.ip()));
        }
        result.append(interface);
    }
    return result;
}

QList<CaptureDevice> findAllDevices(const QList<PcapDevice>& devices,
                                    const QList<SystemInterface>& interfaces, Log::Level level)
{
    const Resolver resolver(interfaces.isEmpty() ? interfacesOf(devices) : interfaces, level);
    QList<CaptureDevice> found;
    for (const PcapDevice& device : devices) {
        const std::optional<CaptureDevice> usable = usableDevice(device, resolver, level);
        if (!usable) {
            continue;
        }
        if (found.size() == InterfaceLimit) {
            Log::warn("Found more than 200 interfaces, which can't be right. Bailing out of "
                      "findAllDevices()");
            break;
        }
        found.append(*usable);
    }
    return found;
}
