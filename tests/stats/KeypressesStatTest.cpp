// SPDX-License-Identifier: GPL-3.0-or-later
#include "Client.h"
#include "stats/KeypressesStat.h"
#include "support/LogCapture.h"
#include "support/TestRegistry.h"

#include <QTest>

#include <memory>

namespace {

enum Switch
{
    PerApplication = 1,
    Heatmap = 2,
    Excluded = 4,
};

} // namespace

class KeypressesStatTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void filesTwoBatches_data();
    void filesTwoBatches();
    void startsEachHourAndProfileAtZero();
    void countsOnlyWhatIsTypedWhileOn();
    void filesCombinations();
    void hidesTheOrderOfKeys();
    void goesOnAfterTheDatabaseWasReopened();

private:
    void type(const QList<Qt::Key>& keys, int hour = 14);

    const QString m_editor = QStringLiteral("/usr/bin/editor");
    std::unique_ptr<Client> m_client;
    std::unique_ptr<KeypressesStat> m_stat;
};

void KeypressesStatTest::init()
{
    m_client = std::make_unique<Client>();
    m_client->system.activeApplication = m_editor;
    m_stat = std::make_unique<KeypressesStat>(&m_client->system, nullptr);
    m_stat->setPerApplication(true);
    m_stat->setEnabled(true);
}

void KeypressesStatTest::cleanup()
{
    m_stat.reset();
    m_client.reset();
}

void KeypressesStatTest::type(const QList<Qt::Key>& keys, int hour)
{
    m_client->system.keys = keys;
    m_stat->doFrequentUpdate(QDateTime(QDate::currentDate(), QTime(hour, 59)), false);
}

void KeypressesStatTest::filesTwoBatches_data()
{
    QTest::addColumn<QString>("application");
    QTest::addColumn<int>("switches");
    QTest::addColumn<int>("unknownKeys"); ///< In each batch, beside two of A and one of B.
    QTest::addColumn<QString>("total");   ///< Of the second batch alone.
    QTest::addColumn<QString>("keys");
    QTest::addColumn<QString>("applications");
    QTest::addColumn<QString>("applicationKeys");
    const QString none;
    const QString three = QStringLiteral("14|3|0");
    const QString keys = QStringLiteral("14|65|4|0,14|66|2|0");
    const QString editor = QStringLiteral("14|/usr/bin/editor|6|0|0");
    const QString editorKeys =
        QStringLiteral("14|65|4|/usr/bin/editor|0,14|66|2|/usr/bin/editor|0");
    const int all = PerApplication | Heatmap;
    QTest::newRow("everything") << m_editor << all << 0 << three << keys << editor << editorKeys;
    QTest::newRow("unknown keys") << m_editor << all << 2 << QStringLiteral("14|5|0") << keys
                                  << QStringLiteral("14|/usr/bin/editor|10|0|0") << editorKeys;
    QTest::newRow("excluded application")
        << m_editor << (all | Excluded) << 0 << three << keys << none << none;
    QTest::newRow("no application in front")
        << none << all << 0 << three << keys << none << QStringLiteral("14|65|4||0,14|66|2||0");
    QTest::newRow("not per application")
        << m_editor << static_cast<int>(Heatmap) << 0 << three << keys << none << none;
    QTest::newRow("no heat map") << m_editor << static_cast<int>(PerApplication) << 0 << three
                                 << none << editor << none;
    QTest::newRow("totals only") << m_editor << 0 << 0 << three << none << none << none;
}

void KeypressesStatTest::filesTwoBatches()
{
    QFETCH(QString, application);
    QFETCH(int, switches);
    QFETCH(int, unknownKeys);
    m_client->system.activeApplication = application;
    const bool perApplication = (switches & PerApplication) != 0;
    const bool excluded = (switches & Excluded) != 0;
    if (excluded) {
        m_client->system.excludedApplications.insert(application);
    }
    m_stat->setPerApplication(perApplication);
    m_stat->setHeatmap((switches & Heatmap) != 0);
    const QList<Qt::Key> batch = QList<Qt::Key>{Qt::Key_A, Qt::Key_B, Qt::Key_A} +
                                 QList<Qt::Key>(unknownKeys, Qt::Key_unknown);
    type(batch);
    type({});
    type(batch);

    const auto today = [this](const char* columnsAndTable) {
        return m_client->rows(
            QStringLiteral("SELECT hour, %1 WHERE day=date('now', 'localtime') ORDER BY 1, 2, 3")
                .arg(QLatin1String(columnsAndTable)));
    };
    QTEST(today("count, profile_id FROM keypresses"), "total");
    QTEST(today("key, count, profile_id FROM keypress_frequency"), "keys");
    QTEST(today("path, keys, clicks, profile_id FROM input_per_application"), "applications");
    QTEST(today("key, count, path, profile_id FROM keypress_frequency_application"),
          "applicationKeys");
    const auto all = static_cast<quint64>(2 * batch.size());
    QCOMPARE(m_client->totals.unzurged().keys, all);
    const bool filed = perApplication && !excluded && !application.isEmpty();
    QCOMPARE(m_client->totals.unzurgedPerApplication().value(application).keys, filed ? all : 0);
}

void KeypressesStatTest::startsEachHourAndProfileAtZero()
{
    type({Qt::Key_A, Qt::Key_A}, 9);
    type({Qt::Key_A}, 9);
    type({Qt::Key_A, Qt::Key_A, Qt::Key_A}, 10);
    m_stat->setStatsProfileId(7);
    type({Qt::Key_A, Qt::Key_A}, 10);
    type({Qt::Key_A}, 10);
    QCOMPARE(m_client->rows(QStringLiteral("SELECT hour, profile_id, count FROM keypresses "
                                           "ORDER BY hour, profile_id")),
             QStringLiteral("9|0|1,10|0|0,10|7|1"));
    QCOMPARE(m_client->rows(QStringLiteral("SELECT hour, profile_id, count FROM keypress_frequency "
                                           "ORDER BY hour, profile_id")),
             QStringLiteral("9|0|3,10|0|3,10|7|3"));
}

void KeypressesStatTest::countsOnlyWhatIsTypedWhileOn()
{
    QCOMPARE(m_client->system.inputHolders, 1);
    m_stat->setEnabled(false);
    QCOMPARE(m_client->system.inputHolders, 0);
    m_client->system.keys = {Qt::Key_S, Qt::Key_E, Qt::Key_C};
    m_stat->setEnabled(true);
    m_stat->update();
    QCOMPARE(m_client->rows(QStringLiteral("SELECT * FROM keypress_frequency")), QString());
}

void KeypressesStatTest::filesCombinations()
{
    const KeyCombination plain{.key = 65};
    const KeyCombination two{.control = true, .shift = true, .key = 65};
    const KeyCombination five{.control = true,
                              .option = true,
                              .shift = true,
                              .command = true,
                              .fn = true,
                              .key = Qt::Key_F1};
    // A combination is counted from its second time on.
    m_client->system.combinations = {plain, two, plain, five, two, five, two};
    type({});
    const QString expected =
        QStringLiteral("control,option,shift,command,fn,16777264|1,control,shift,65|2");
    QCOMPARE(m_client->rows(
                 QStringLiteral("SELECT combo, count FROM keycombo_frequency ORDER BY combo")),
             expected);
    QCOMPARE(
        m_client->rows(QStringLiteral("SELECT combo, count FROM keycombo_frequency_application "
                                      "WHERE path='/usr/bin/editor' ORDER BY combo")),
        expected);
}

void KeypressesStatTest::hidesTheOrderOfKeys()
{
    const LogCapture log(Log::Level::Debug);
    QList<Qt::Key> typed;
    QStringList order;
    for (int key = Qt::Key_A; key <= Qt::Key_T; ++key) {
        typed += static_cast<Qt::Key>(key);
        order += QString::number(key);
    }
    type(typed, 1);
    type(typed, 2);

    const auto stored = [this](int hour) {
        return m_client->rows(
            QStringLiteral("SELECT key FROM keypress_frequency WHERE hour=%1 ORDER BY rowid")
                .arg(hour));
    };
    QCOMPARE(stored(1).split(u',').size(), order.size());
    QVERIFY(stored(1) != order.join(u','));
    QVERIFY(stored(1) != stored(2));
    QCOMPARE(log.text(), QString());
}

void KeypressesStatTest::goesOnAfterTheDatabaseWasReopened()
{
    type({Qt::Key_A});
    m_client->database()->closeDatabase();
    QVERIFY(m_client->database()->reconnectIfNeeded());
    type({Qt::Key_A});
    QCOMPARE(m_client->rows(QStringLiteral("SELECT key, count FROM keypress_frequency")),
             QStringLiteral("65|2"));
}

REGISTER_TEST(KeypressesStatTest);
#include "KeypressesStatTest.moc"
