// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/FakeSystem.h"
#include "support/TestRegistry.h"
#include "system/CachedSystem.h"

#include <QTest>

namespace {

/// Writes down what it is asked of the things that are kept.
class RecordingSystem : public FakeSystem
{
public:
    explicit RecordingSystem(QStringList& calls)
        : m_calls(calls)
    {
    }

    QString getApplicationName(const QString& path) override
    {
        return note(QStringLiteral("name ") + path);
    }

    QString getActiveApplicationPath() override { return note(QStringLiteral("active")); }

    bool isFullscreenApplicationActive() override
    {
        return !note(QStringLiteral("fullscreen")).isEmpty();
    }

    QList<Interface> getNetworkInterfaces() override
    {
        note(QStringLiteral("interfaces"));
        return {};
    }

    QDateTime getBootTime() override
    {
        note(QStringLiteral("boot"));
        return QDateTime::fromSecsSinceEpoch(1);
    }

private:
    QString note(const QString& call)
    {
        m_calls.append(call);
        return call;
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
    void keepsFor_data();
    void keepsFor();
    void keepsOnlyTheNamesUsedLast();
    void asksAnewAfter_data();
    void asksAnewAfter();

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

void CachedSystemTest::keepsFor_data()
{
    QTest::addColumn<Operation>("operation");
    QTest::addColumn<qint64>("lifeMs"); // 0: for ever
    const auto row = [](const char* name, qint64 lifeMs, const Operation& operation) {
        QTest::newRow(name) << operation << lifeMs;
    };
    row("front window", CachedSystem::FrontWindowMs,
        [](AbstractSystem& s) { s.getActiveApplicationPath(); });
    row("full screen", CachedSystem::FrontWindowMs,
        [](AbstractSystem& s) { s.isFullscreenApplicationActive(); });
    row("name", CachedSystem::NamesMs, [](AbstractSystem& s) { s.getApplicationNameCached(Item); });
    row("interfaces", CachedSystem::InterfacesMs,
        [](AbstractSystem& s) { s.getNetworkInterfaces(); });
    row("boot time", 0, [](AbstractSystem& s) { s.getBootTime(); });
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

void CachedSystemTest::asksAnewAfter_data()
{
    QTest::addColumn<Operation>("event");
    QTest::addColumn<QStringList>("askedAnew");
    const Operation resume = [](AbstractSystem& s) { s.onSystemResume(); };
    const Operation refresh = [](AbstractSystem& s) { s.refreshNetworkInterfaces(); };
    const QStringList names{QStringLiteral("name x"), QStringLiteral("active"),
                            QStringLiteral("interfaces")};
    QTest::newRow("sleep") << resume << names;
    QTest::newRow("refresh") << refresh << names.mid(2);
}

void CachedSystemTest::asksAnewAfter()
{
    QFETCH(Operation, event);
    const auto askAll = [this] {
        m_system->getApplicationNameCached(Item);
        m_system->getActiveApplicationPath();
        m_system->getNetworkInterfaces();
        m_system->getBootTime();
    };
    askAll();
    event(*m_system);
    m_calls.clear();
    askAll();
    QTEST(m_calls, "askedAnew");
}

REGISTER_TEST(CachedSystemTest);
#include "CachedSystemTest.moc"
