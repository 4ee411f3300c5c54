// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/FakeSystem.h"
#include "support/TestRegistry.h"
#include "system/CachedSystem.h"

#include <QTest>

namespace {

/// Writes down what it is asked, where two operations could be taken for one another.
class RecordingSystem : public FakeSystem
{
public:
    explicit RecordingSystem(QStringList& calls)
        : m_calls(calls)
    {
    }

    QString getApplicationName(const QString& path) override { return note("name ") + path; }

    QIcon getApplicationIcon(const QString&) override
    {
        note("icon");
        return {};
    }

    QString getActiveApplicationPath() override
    {
        return note("active") + QString::number(m_calls.size());
    }

    bool isFullscreenApplicationActive() override { return !note("fullscreen").isEmpty(); }

    QList<Interface> getNetworkInterfaces() override
    {
        note("interfaces");
        return {};
    }

    QDateTime getBootTime() override
    {
        note("boot");
        return QDateTime::fromSecsSinceEpoch(1);
    }

    QString getProcessorName() override { return note("processor"); }

    QString getMemoryInfo() override { return note("memory"); }

    QString getVideocardName() override { return note("video"); }

    QString getPlatform() override { return note("platform"); }

    QString getOperatingSystem() override { return note("os"); }

    QString getHostName() override { return note("host"); }

    QString getKeyboardHardware() override { return note("keyboard"); }

    QString getMouseHardware() override { return note("mouse"); }

    QString getTrackpadHardware() override { return note("trackpad"); }

    QString getComputerModel(bool withVendor) override
    {
        return withVendor ? note("vendor and model") : note("model");
    }

    QHash<unsigned short, NetworkTraffic> getPortsBandwidth() override { return traffic("all"); }

    QHash<unsigned short, NetworkTraffic> getPortsBandwidthTCP() override { return traffic("tcp"); }

    QHash<unsigned short, NetworkTraffic> getPortsBandwidthUDP() override { return traffic("udp"); }

    QHash<unsigned short, NetworkTraffic> getPortsBandwidthOther() override
    {
        return traffic("other");
    }

    void refreshNetworkInterfaces() override { note("refresh"); }

    void onSystemSuspend() override { note("suspend"); }

    void onSystemResume() override { note("resume"); }

    void stop() override { note("stop"); }

    void acquireNetworkTrafficMonitor() override { note("acquire network"); }

    void releaseNetworkTrafficMonitor() override { note("release network"); }

    void acquireInputMonitor() override { note("acquire input"); }

    void releaseInputMonitor() override { note("release input"); }

    bool shouldExcludeApplicationForStats(QString path) override
    {
        return !note("app? " + path.toLatin1()).isEmpty();
    }

    void addExcludedApplicationForStats(QString path) override { note("app+ " + path.toLatin1()); }

    void deleteExcludedApplicationForStats(QString path) override
    {
        note("app- " + path.toLatin1());
    }

    bool shouldExcludeNICForStats(QString mac) override
    {
        return !note("nic? " + mac.toLatin1()).isEmpty();
    }

    void addExcludedNICForStats(QString mac) override { note("nic+ " + mac.toLatin1()); }

    void deleteExcludedNICForStats(QString mac) override { note("nic- " + mac.toLatin1()); }

    void initNetworkPortDescriptions() override { note("ports"); }

private:
    QString note(const QByteArray& call)
    {
        m_calls.append(QString::fromLatin1(call));
        return m_calls.last();
    }

    QHash<unsigned short, NetworkTraffic> traffic(const char* kind)
    {
        note(kind);
        return {};
    }

    QStringList& m_calls;
};

using Operation = std::function<void(AbstractSystem&)>;

const QString Item = QStringLiteral("x");

} // namespace

Q_DECLARE_METATYPE(Operation)

class CachedSystemTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void forwards_data();
    void forwards();
    void keepsFor_data();
    void keepsFor();
    void keepsOnlyTheNamesUsedLast();
    void dropsWhatMayHaveChangedInSleep();
    void asksAnewForInterfacesAfterARefresh();
    void takesOnce();

private:
    QStringList m_calls;
    qint64 m_now = 0;
    std::unique_ptr<CachedSystem> m_system;
};

void CachedSystemTest::init()
{
    m_calls.clear();
    m_now = 1'000'000;
    m_system = std::make_unique<CachedSystem>(std::make_unique<RecordingSystem>(m_calls),
                                              [this] { return m_now; });
}

void CachedSystemTest::forwards_data()
{
    QTest::addColumn<Operation>("operation");
    const auto row = [](const char* call, const Operation& operation) {
        QTest::newRow(call) << operation;
    };
    row("host", [](AbstractSystem& s) { s.getHostName(); });
    row("keyboard", [](AbstractSystem& s) { s.getKeyboardHardware(); });
    row("mouse", [](AbstractSystem& s) { s.getMouseHardware(); });
    row("trackpad", [](AbstractSystem& s) { s.getTrackpadHardware(); });
    row("name ", [](AbstractSystem& s) { s.getApplicationName(Item); });
    row("all", [](AbstractSystem& s) { s.getPortsBandwidth(); });
    row("tcp", [](AbstractSystem& s) { s.getPortsBandwidthTCP(); });
    row("udp", [](AbstractSystem& s) { s.getPortsBandwidthUDP(); });
    row("other", [](AbstractSystem& s) { s.getPortsBandwidthOther(); });
    row("refresh", [](AbstractSystem& s) { s.refreshNetworkInterfaces(); });
    row("suspend", [](AbstractSystem& s) { s.onSystemSuspend(); });
    row("resume", [](AbstractSystem& s) { s.onSystemResume(); });
    row("stop", [](AbstractSystem& s) { s.stop(); });
    row("acquire network", [](AbstractSystem& s) { s.acquireNetworkTrafficMonitor(); });
    row("release network", [](AbstractSystem& s) { s.releaseNetworkTrafficMonitor(); });
    row("acquire input", [](AbstractSystem& s) { s.acquireInputMonitor(); });
    row("release input", [](AbstractSystem& s) { s.releaseInputMonitor(); });
    row("app? x", [](AbstractSystem& s) { s.shouldExcludeApplicationForStats(Item); });
    row("app+ x", [](AbstractSystem& s) { s.addExcludedApplicationForStats(Item); });
    row("app- x", [](AbstractSystem& s) { s.deleteExcludedApplicationForStats(Item); });
    row("nic? x", [](AbstractSystem& s) { s.shouldExcludeNICForStats(Item); });
    row("nic+ x", [](AbstractSystem& s) { s.addExcludedNICForStats(Item); });
    row("nic- x", [](AbstractSystem& s) { s.deleteExcludedNICForStats(Item); });
    row("ports", [](AbstractSystem& s) { s.initNetworkPortDescriptions(); });
}

void CachedSystemTest::forwards()
{
    QFETCH(Operation, operation);
    operation(*m_system);
    operation(*m_system);
    const QString call = QString::fromLatin1(QTest::currentDataTag());
    QCOMPARE(m_calls, QStringList({call, call}));
}

void CachedSystemTest::keepsFor_data()
{
    QTest::addColumn<Operation>("operation");
    QTest::addColumn<qint64>("lifeMs"); // 0: for ever
    const auto row = [](const char* name, const Operation& operation, qint64 lifeMs) {
        QTest::newRow(name) << operation << lifeMs;
    };
    row(
        "active", [](AbstractSystem& s) { s.getActiveApplicationPath(); },
        CachedSystem::FrontWindowMs);
    row(
        "fullscreen", [](AbstractSystem& s) { s.isFullscreenApplicationActive(); },
        CachedSystem::FrontWindowMs);
    row(
        "name", [](AbstractSystem& s) { s.getApplicationNameCached(Item); }, CachedSystem::NamesMs);
    row(
        "icon", [](AbstractSystem& s) { s.getApplicationIcon(Item); }, CachedSystem::NamesMs);
    row(
        "interfaces", [](AbstractSystem& s) { s.getNetworkInterfaces(); },
        CachedSystem::InterfacesMs);
    row(
        "boot", [](AbstractSystem& s) { s.getBootTime(); }, 0);
    row(
        "os", [](AbstractSystem& s) { s.getOperatingSystem(); }, 0);
    row(
        "platform", [](AbstractSystem& s) { s.getPlatform(); }, 0);
    row(
        "processor", [](AbstractSystem& s) { s.getProcessorName(); }, 0);
    row(
        "memory", [](AbstractSystem& s) { s.getMemoryInfo(); }, 0);
    row(
        "video", [](AbstractSystem& s) { s.getVideocardName(); }, 0);
    row(
        "model", [](AbstractSystem& s) { s.getComputerModel(false); }, 0);
    row(
        "vendor and model", [](AbstractSystem& s) { s.getComputerModel(true); }, 0);
}

void CachedSystemTest::keepsFor()
{
    QFETCH(Operation, operation);
    QFETCH(qint64, lifeMs);
    constexpr qint64 years = qint64{10} * 365 * 86'400'000;
    operation(*m_system);
    m_now += lifeMs > 0 ? lifeMs - 1 : years;
    operation(*m_system);
    QCOMPARE(m_calls.size(), 1);
    QVERIFY(m_calls.first().startsWith(QLatin1String(QTest::currentDataTag())));
    m_now += 1;
    operation(*m_system);
    QCOMPARE(m_calls.size(), lifeMs > 0 ? 2 : 1);
}

void CachedSystemTest::keepsOnlyTheNamesUsedLast()
{
    for (int i = 0; i <= CachedSystem::MostNames; ++i) {
        QCOMPARE(m_system->getApplicationNameCached(QString::number(i)),
                 QStringLiteral("name %1").arg(i));
    }
    const qsizetype asked = m_calls.size();
    m_system->getApplicationNameCached(QStringLiteral("1"));
    QCOMPARE(m_calls.size(), asked);
    m_system->getApplicationNameCached(QStringLiteral("0"));
    QCOMPARE(m_calls.size(), asked + 1);
}

void CachedSystemTest::dropsWhatMayHaveChangedInSleep()
{
    m_system->getApplicationNameCached(Item);
    m_system->getBootTime();
    m_system->onSystemResume();
    m_calls.clear();
    m_system->getApplicationNameCached(Item);
    m_system->getBootTime();
    QCOMPARE(m_calls.size(), 1);
}

void CachedSystemTest::asksAnewForInterfacesAfterARefresh()
{
    m_system->getNetworkInterfaces();
    m_system->refreshNetworkInterfaces();
    m_system->getNetworkInterfaces();
    QCOMPARE(m_calls.count(QStringLiteral("interfaces")), 2);
}

void CachedSystemTest::takesOnce()
{
    auto fake = std::make_unique<FakeSystem>();
    fake->keys = {Qt::Key_A};
    fake->clicks = {2};
    fake->points = {QPointF(0.5, 0.25)};
    fake->scrolls = {{Utils::ScrollDirection::Left, 3}};
    fake->distanceInches = 4;
    CachedSystem cached(std::move(fake), [this] { return m_now; });
    QCOMPARE(cached.retrieveIncrementalKeyPresses(), QList<Qt::Key>{Qt::Key_A});
    QCOMPARE(cached.retrieveIncrementalMouseClicks(), QList<unsigned short>{2});
    QCOMPARE(cached.retrieveIncrementalMousePoints(), QList<QPointF>{QPointF(0.5, 0.25)});
    QCOMPARE(cached.retrieveIncrementalMouseScrolls(Utils::ScrollDirection::Right), 0);
    QCOMPARE(cached.retrieveIncrementalMouseScrolls(Utils::ScrollDirection::Left), 3);
    QCOMPARE(cached.retrieveIncrementalMouseDistanceInches(), 4.0F);
    QVERIFY(cached.retrieveIncrementalKeyPresses().isEmpty());
    QVERIFY(cached.retrieveIncrementalMouseClicks().isEmpty());
    QCOMPARE(cached.retrieveIncrementalMouseDistanceInches(), 0.0F);
}

REGISTER_TEST(CachedSystemTest);
#include "CachedSystemTest.moc"
