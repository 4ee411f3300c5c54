// SPDX-License-Identifier: GPL-3.0-or-later
#include "network/CaptureState.h"
#include "support/LogCapture.h"
#include "support/TestDatabase.h"
#include "support/TestRegistry.h"
#include "system/CommonSystem.h"
#include "system/FixtureRoot.h"
#include "system/InputPipe.h"

#include <QTest>

/// The whole probe, on a database, an input directory and a "/proc" of its own.
class LinuxSystemTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void readsInputWhileSomeoneHoldsIt();
    void watchesTheNetworkWhileSomeoneHoldsIt();
    void describesPorts();
    void keepsExclusions();
    void readsExclusionsAgain();

private:
    std::unique_ptr<CommonSystem> system(Database* database) const
    {
        return CommonSystem::createPlatformSpecificSystem(
            database, nullptr, {m_root->path(), m_root->path(), m_root->path()});
    }

    std::unique_ptr<FixtureRoot> m_root;
    std::unique_ptr<InputPipe> m_keyboard;
};

void LinuxSystemTest::init()
{
    m_root = std::make_unique<FixtureRoot>();
    m_keyboard = std::make_unique<InputPipe>(m_root->filePath(QStringLiteral("event0")));
}

void LinuxSystemTest::cleanup()
{
    m_keyboard.reset();
    m_root.reset();
}

void LinuxSystemTest::readsInputWhileSomeoneHoldsIt()
{
    const auto probe = system(nullptr);
    QVERIFY(!probe->hasInputListeners());
    probe->acquireInputMonitor();
    probe->acquireInputMonitor();
    QVERIFY(probe->hasInputListeners());
    probe->releaseInputMonitor();
    QVERIFY(probe->hasInputListeners());
    probe->releaseInputMonitor();
    QVERIFY(!probe->hasInputListeners());
    probe->releaseInputMonitor(); // One too many must not make the next holder count for nothing.
    probe->acquireInputMonitor();
    QVERIFY(probe->hasInputListeners());

    QVERIFY(m_keyboard->tap({KEY_A}));
    QList<Qt::Key> keys;
    QTRY_COMPARE((keys += probe->retrieveIncrementalKeyPresses()).size(), 1);

    probe->stop(); // Whoever holds it.
    QVERIFY(!probe->hasInputListeners());
    probe->releaseInputMonitor();
    QVERIFY(!probe->hasInputListeners());
}

void LinuxSystemTest::watchesTheNetworkWhileSomeoneHoldsIt()
{
    const LogCapture log;
    const auto probe = system(nullptr);
    const auto starts = [&log] { return log.count(QStringLiteral("Network capture: ")); };
    probe->acquireNetworkTrafficMonitor();
    probe->acquireNetworkTrafficMonitor();
    probe->releaseNetworkTrafficMonitor();
    probe->acquireNetworkTrafficMonitor();
    QCOMPARE(starts(), 1);
    QCOMPARE(probe->isNetworkTrafficMonitorSupported(),
             probe->captureState().backEnd != CaptureState::BackEnd::Counters);
    for (int release = 0; release < 3; ++release) { // One too many.
        probe->releaseNetworkTrafficMonitor();
    }
    probe->acquireNetworkTrafficMonitor();
    QCOMPARE(starts(), 2);
    probe->stop();
    probe->releaseNetworkTrafficMonitor();
    probe->acquireNetworkTrafficMonitor();
    QCOMPARE(starts(), 3);
}

void LinuxSystemTest::describesPorts()
{
    using Utils::TrafficType;
    QVERIFY(m_root->write(QStringLiteral("network-ports-custom.csv"),
                          QByteArrayLiteral("47123;TCP;Of my own\n")));
    const auto probe = system(nullptr);
    QVERIFY(!probe->isKnownNetworkPort(47'123, TrafficType::Tcp));
    probe->initNetworkPortDescriptions();
    QTRY_VERIFY(probe->isKnownNetworkPort(47'123, TrafficType::Tcp));
    QVERIFY(!probe->isKnownNetworkPort(47'123, TrafficType::Udp));
    QTRY_VERIFY(probe->isKnownNetworkPort(443, TrafficType::Tcp));
    QCOMPARE(probe->getNetworkPortDescription(47'123, TrafficType::Tcp),
             QStringLiteral("Of my own"));
}

void LinuxSystemTest::keepsExclusions()
{
    const QString path = QStringLiteral("/usr/bin/o'neil \"x\"");
    const TestDatabase database;
    const auto probe = system(database.database());
    probe->addExcludedApplicationForStats(path);
    probe->addExcludedApplicationForStats(path);
    probe->addExcludedApplicationForStats(QString());
    probe->addExcludedNICForStats(QStringLiteral("aa:bb:cc:dd:ee:ff"));
    QVERIFY(probe->shouldExcludeApplicationForStats(path));
    QVERIFY(!probe->shouldExcludeApplicationForStats(path.toUpper()));
    QVERIFY(!probe->shouldExcludeApplicationForStats(QString()));
    QVERIFY(probe->shouldExcludeNICForStats(QStringLiteral("AA:BB:CC:DD:EE:FF")));
    QVERIFY(!probe->shouldExcludeNICForStats(path));
    QCOMPARE(database.rows(QStringLiteral("SELECT path FROM application_ignore")), path);
    const auto nextRun = system(database.database());
    QVERIFY(nextRun->shouldExcludeApplicationForStats(path));
    QVERIFY(nextRun->shouldExcludeNICForStats(QStringLiteral("aa:BB:cc:dd:ee:ff")));
    nextRun->deleteExcludedApplicationForStats(path);
    nextRun->deleteExcludedNICForStats(QStringLiteral("Aa:bb:cc:dd:ee:ff"));
    QVERIFY(!nextRun->shouldExcludeApplicationForStats(path));
    QCOMPARE(database.rows(QStringLiteral("SELECT path FROM application_ignore UNION ALL "
                                          "SELECT mac_address FROM network_interfaces_ignore")),
             QString());
}

void LinuxSystemTest::readsExclusionsAgain()
{
    const TestDatabase database;
    const auto probe = system(database.database());
    probe->addExcludedApplicationForStats(QStringLiteral("/bin/a"));
    QVERIFY(database.exec(QStringLiteral("DELETE FROM application_ignore")));
    QVERIFY(database.exec(QStringLiteral("INSERT INTO application_ignore VALUES('/bin/b')")));
    QVERIFY(database.exec(QStringLiteral("INSERT INTO network_interfaces_ignore VALUES('00:ab')")));
    QVERIFY(!probe->shouldExcludeApplicationForStats(QStringLiteral("/bin/b"))); // From memory.
    probe->reloadExclusions();
    QVERIFY(probe->shouldExcludeApplicationForStats(QStringLiteral("/bin/b")));
    QVERIFY(!probe->shouldExcludeApplicationForStats(QStringLiteral("/bin/a")));
    QVERIFY(probe->shouldExcludeNICForStats(QStringLiteral("00:AB")));
    probe->deleteExcludedNICForStats(QStringLiteral("00:AB")); // Also one stored in lower case.
    QCOMPARE(database.rows(QStringLiteral("SELECT * FROM network_interfaces_ignore")), QString());
}

REGISTER_TEST(LinuxSystemTest);
#include "LinuxSystemTest.moc"
