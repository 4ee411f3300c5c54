// SPDX-License-Identifier: GPL-3.0-or-later
#include "system/Hardware.h"

#include "base/Format.h"
#include "system/HardwareIds.h"
#include "system/ProcText.h"
#include "system/TextLines.h"

#include <QSysInfo>

#include <linux/input.h>

namespace {

QStringList distinct(QStringList names)
{
    names.removeAll(QString());
    names.removeDuplicates();
    return names;
}

QString joined(const QStringList& names)
{
    return distinct(names).join(QStringLiteral(", "));
}

/// "Vendor Device", without repeating a vendor that the device's own name begins with.
QString fullName(const QString& vendor, const QString& device)
{
    const bool named =
        device.startsWith(vendor.section(QLatin1Char(' '), 0, 0), Qt::CaseInsensitive);
    return (named ? device : vendor + QLatin1Char(' ') + device).trimmed();
}

} // namespace

Hardware::Hardware(const QString& root)
    : m_root(root)
{
}

QString Hardware::operatingSystem() const
{
    for (const QString& file :
         {QStringLiteral("etc/os-release"), QStringLiteral("usr/lib/os-release")}) {
        QString name = ProcText::osReleaseValue(read(file), "PRETTY_NAME");
        if (!name.isEmpty()) {
            return name;
        }
    }
    return QSysInfo::prettyProductName();
}

QString Hardware::processor() const
{
    return ProcText::processorName(read(QStringLiteral("proc/cpuinfo")));
}

QString Hardware::memory() const
{
    constexpr quint64 bytesPerKib = 1024;
    const auto kib = ProcText::memoryKib(read(QStringLiteral("proc/meminfo")));
    return kib ? Format::bytes(static_cast<quint64>(*kib) * bytesPerKib) : QString();
}

QString Hardware::videocards() const
{
    const QString cards = pciVideocards();
    return cards.isEmpty() ? drmDrivers() : cards;
}

QString Hardware::inputDevices(InputDeviceDescription::Kind kind) const
{
    return joined(inputDeviceNames(kind));
}

QStringList Hardware::inputDeviceNames(InputDeviceDescription::Kind kind) const
{
    QStringList names;
    for (const auto& device : parseInputDevices(read(QStringLiteral("proc/bus/input/devices")))) {
        if (device.kind != kind) {
            continue;
        }
        QString name = device.name;
        if (name.isEmpty() && device.bus == BUS_USB) {
            const auto known =
                HardwareIds::find(idList(QStringLiteral("usb.ids")), device.vendor, device.product);
            name = fullName(known.vendor, known.device);
        }
        names.append(name);
    }
    return distinct(names);
}

QString Hardware::platform()
{
    return QStringLiteral("Linux %1 %2")
        .arg(QSysInfo::kernelVersion(), QSysInfo::currentCpuArchitecture());
}

QString Hardware::model(Vendor vendor) const
{
    QString maker = dmi(QStringLiteral("sys_vendor"));
    QString product = dmi(QStringLiteral("product_name"));
    if (maker.compare(QLatin1String("LENOVO"), Qt::CaseInsensitive) == 0) {
        // This maker's product name is an order number; what is printed on the machine is the
        // version.
        const QString version = dmi(QStringLiteral("product_version"));
        product = version.isEmpty() ? product : version;
    }
    if (product.isEmpty()) {
        maker = dmi(QStringLiteral("board_vendor"));
        product = dmi(QStringLiteral("board_name"));
    }
    if (product.isEmpty()) {
        return HardwareIds::modelText(read(QStringLiteral("proc/device-tree/model")));
    }
    return vendor == Vendor::Named ? fullName(maker, product) : product;
}

int Hardware::tcpConnections() const
{
    return ProcText::establishedConnections(read(QStringLiteral("proc/net/tcp"))) +
           ProcText::establishedConnections(read(QStringLiteral("proc/net/tcp6")));
}

QByteArray Hardware::read(const QString& relativePath) const
{
    return ProcText::read(m_root.filePath(relativePath));
}

QByteArray Hardware::idList(const QString& name) const
{
    // Debian, Fedora and the others disagree on the directory.
    const QByteArray list = read(QStringLiteral("usr/share/misc/") + name);
    return list.isEmpty() ? read(QStringLiteral("usr/share/hwdata/") + name) : list;
}

QString Hardware::pciVideocards() const
{
    constexpr unsigned displayController = 0x03; // PCI_BASE_CLASS_DISPLAY of linux/pci_ids.h
    const QString devices = QStringLiteral("sys/bus/pci/devices/");
    QStringList names;
    QByteArray ids;
    for (const QString& slot :
         QDir(m_root.filePath(devices)).entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        const auto number = [&](const char* file) {
            return HardwareIds::hexNumber(
                read(devices + slot + QLatin1Char('/') + QLatin1String(file)));
        };
        if (number("class") >> 16U != displayController) {
            continue;
        }
        if (ids.isEmpty()) {
            ids = idList(QStringLiteral("pci.ids"));
        }
        const auto vendor = static_cast<unsigned short>(number("vendor"));
        const auto device = static_cast<unsigned short>(number("device"));
        const HardwareIds::Names known = HardwareIds::find(ids, vendor, device);
        const QString code = QStringLiteral("%1:%2")
                                 .arg(vendor, 4, 16, QLatin1Char('0'))
                                 .arg(device, 4, 16, QLatin1Char('0'));
        names.append(fullName(known.vendor, known.device.isEmpty() ? code : known.device));
    }
    return joined(names);
}

QString Hardware::drmDrivers() const
{
    constexpr QByteArrayView driver("DRIVER=");
    const QString cards = QStringLiteral("sys/class/drm/");
    QStringList names;
    for (const QString& card :
         QDir(m_root.filePath(cards)).entryList({QStringLiteral("card?")}, QDir::Dirs)) {
        const QByteArray text = read(cards + card + QStringLiteral("/device/uevent"));
        forEachLine(text, [&](QByteArrayView line) {
            const bool found = line.startsWith(driver);
            if (found) {
                names.append(QString::fromUtf8(line.sliced(driver.size())));
            }
            return found;
        });
    }
    return joined(names);
}

QString Hardware::dmi(const QString& field) const
{
    return HardwareIds::modelText(read(QStringLiteral("sys/class/dmi/id/") + field));
}
