// SPDX-License-Identifier: GPL-3.0-or-later
#include "network/NetworkChanges.h"
#include "support/NetworkPair.h"
#include "support/TestFiles.h"
#include "support/TestRegistry.h"

#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

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

    /// More announcements than the socket's queue holds, none of them read: some are lost.
    void tellsOnceOfMany()
    {
        const NetworkPair network;
        if (!network.isMade()) {
            QSKIP("needs the right to make a network namespace");
        }
        const NetworkChanges changes;
        QSignalSpy changed(&changes, &NetworkChanges::changed);
        const QTemporaryDir directory;
        const QString batch = directory.filePath(QStringLiteral("batch"));
        constexpr int times = 300;
        QVERIFY(writeFile(batch,
                          QByteArray("link add new type veth\n") +
                              QByteArray("link set new up\nlink set new down\n").repeated(times)));
        QVERIFY(NetworkPair::ip(QStringLiteral("-batch ") + batch));
        QTRY_COMPARE(changed.count(), 1);
        changed.clear();
        QVERIFY(NetworkPair::ip(QStringLiteral("link delete new")));
        QTRY_VERIFY(!changed.isEmpty());
    }
};

REGISTER_TEST(NetworkChangesTest);

#include "NetworkChangesTest.moc"
