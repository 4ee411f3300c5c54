// SPDX-License-Identifier: GPL-3.0-or-later
#include "network/NetworkChanges.h"
#include "support/NetworkPair.h"
#include "support/TestRegistry.h"

#include <QCoreApplication>
#include <QSignalSpy>
#include <QTest>

#include <net/if.h>
#include <sys/ioctl.h>
#include <sys/socket.h>

#include <cstring>

class NetworkChangesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void tellsOfEach_data()
    {
        QTest::addColumn<QString>("change");
        QTest::newRow("an interface comes") << QStringLiteral("link add new type veth");
        QTest::newRow("an interface goes") << QStringLiteral("link delete old");
        QTest::newRow("an interface goes up") << QStringLiteral("link set old up");
        QTest::newRow("an IPv4 address comes")
            << QStringLiteral("address add 203.0.113.5/24 dev old");
        QTest::newRow("an IPv4 address goes")
            << QStringLiteral("address delete 203.0.113.1/24 dev old");
        QTest::newRow("an IPv6 address comes")
            << QStringLiteral("address add 2001:db8::5/64 dev old");
    }

    void tellsOfEach()
    {
        QFETCH(const QString, change);
        const NetworkPair network;
        if (!network.isMade()) {
            QSKIP("needs the right to make a network namespace");
        }
        QVERIFY(NetworkPair::ip(QStringLiteral("link add old type veth")));
        QVERIFY(NetworkPair::ip(QStringLiteral("address add 203.0.113.1/24 dev old")));
        const NetworkChanges changes;
        QSignalSpy changed(&changes, &NetworkChanges::changed);
        QVERIFY(NetworkPair::ip(change));
        QTRY_COMPARE(changed.count(), 1);
    }

    /// Each is read by itself, far sooner than the signal is due.
    void tellsLessOftenThanTheKernel()
    {
        const NetworkPair network;
        if (!network.isMade()) {
            QSKIP("needs the right to make a network namespace");
        }
        QVERIFY(NetworkPair::ip(QStringLiteral("link add new type veth")));
        const NetworkChanges changes;
        QSignalSpy changed(&changes, &NetworkChanges::changed);
        constexpr int times = 50;
        for (int i = 0; i < times; ++i) {
            QVERIFY(setPacketSize("new", 1000 + i));
            QCoreApplication::processEvents();
        }
        QTRY_VERIFY(!changed.isEmpty());
        QVERIFY(changed.count() < times);
    }

    /// More announcements than the socket's queue holds, none of them read meanwhile.
    void goesOnAfterSomeWereLost()
    {
        const NetworkPair network;
        if (!network.isMade()) {
            QSKIP("needs the right to make a network namespace");
        }
        QVERIFY(NetworkPair::ip(QStringLiteral("link add new type veth")));
        const NetworkChanges changes;
        QSignalSpy changed(&changes, &NetworkChanges::changed);
        constexpr int times = 1000;
        for (int i = 0; i < times; ++i) {
            QVERIFY(setPacketSize("new", 1000 + i));
        }
        QTRY_VERIFY(!changed.isEmpty());
        changed.clear();
        QVERIFY(NetworkPair::ip(QStringLiteral("link delete new")));
        QTRY_VERIFY(!changed.isEmpty());
    }

private:
    /// The largest that the interface takes; a change that costs the kernel little.
    static bool setPacketSize(const char* name, int size)
    {
        const FileDescriptor any(socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0));
        ifreq request = {};
        std::strncpy(request.ifr_name, name, IFNAMSIZ - 1);
        request.ifr_mtu = size;
        return ioctl(any.get(), SIOCSIFMTU, &request) == 0;
    }
};

REGISTER_TEST(NetworkChangesTest);

#include "NetworkChangesTest.moc"
