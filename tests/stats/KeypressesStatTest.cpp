// SPDX-License-Identifier: GPL-3.0-or-later
#include "Client.h"
#include "base/Log.h"
#include "stats/KeypressesStat.h"
#include "support/TestRegistry.h"

#include <QFile>
#include <QTest>

#include <memory>

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
    void filesCombinations_data();
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
    QTest::addColumn<bool>("excluded");
    QTest::addColumn<bool>("perApplication");
    QTest::addColumn<bool>("heatmap");
    QTest::addColumn<int>("unknownKeys"); ///< In each batch, beside two of A and one of B.
    QTest::addColumn<QStringList>("total");
    QTest::addColumn<QStringList>("keys");
    QTest::addColumn<QStringList>("applications");
    QTest::addColumn<QStringList>("applicationKeys");
    const QStringList none;
    const QStringList keys{QStringLiteral("14 65 4 0"), QStringLiteral("14 66 2 0")};
    const QStringList three{QStringLiteral("14 3 0")}; // The second batch alone.
    const QStringList application{QStringLiteral("14 /usr/bin/editor 6 0 0")};
    const QStringList applicationKeys{QStringLiteral("14 65 4 /usr/bin/editor 0"),
                                      QStringLiteral("14 66 2 /usr/bin/editor 0")};
    QTest::newRow("everything") << m_editor << false << true << true << 0 << three << keys
                                << application << applicationKeys;
    QTest::newRow("unknown keys") << m_editor << false << true << true << 2
                                  << QStringList{QStringLiteral("14 5 0")} << keys
                                  << QStringList{QStringLiteral("14 /usr/bin/editor 10 0 0")}
                                  << applicationKeys;
    QTest::newRow("excluded application")
        << m_editor << true << true << true << 0 << three << keys << none << none;
    QTest::newRow("no application in front")
        << QString() << false << true << true << 0 << three << keys << none << none;
    QTest::newRow("not per application")
        << m_editor << false << false << true << 0 << three << keys << none << none;
    QTest::newRow("no heat map") << m_editor << false << true << false << 0 << three << none
                                 << application << none;
    QTest::newRow("totals only") << m_editor << false << false << false << 0 << three << none
                                 << none << none;
}

void KeypressesStatTest::filesTwoBatches()
{
    QFETCH(QString, application);
    QFETCH(bool, excluded);
    QFETCH(bool, perApplication);
    QFETCH(bool, heatmap);
    QFETCH(int, unknownKeys);
    m_client->system.activeApplication = application;
    if (excluded) {
        m_client->system.excludedApplications.insert(application);
    }
    m_stat->setPerApplication(perApplication);
    m_stat->setHeatmap(heatmap);
    const QList<Qt::Key> batch = QList<Qt::Key>{Qt::Key_A, Qt::Key_B, Qt::Key_A} +
                                 QList<Qt::Key>(unknownKeys, Qt::Key_unknown);
    type(batch);
    type({});
    type(batch);

    const QString today =
        QStringLiteral(R"(WHERE "day"=date('now', 'localtime') ORDER BY 1, 2, 3)");
    QTEST(m_client->rows(QStringLiteral("SELECT hour, count, profile_id FROM keypresses ") + today),
          "total");
    QTEST(
        m_client->rows(
            QStringLiteral("SELECT hour, key, count, profile_id FROM keypress_frequency ") + today),
        "keys");
    QTEST(m_client->rows(QStringLiteral("SELECT hour, path, keys, clicks, profile_id "
                                        "FROM input_per_application ") +
                         today),
          "applications");
    QTEST(m_client->rows(QStringLiteral("SELECT hour, key, count, path, profile_id "
                                        "FROM keypress_frequency_application ") +
                         today),
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
    QCOMPARE(
        m_client->rows(QStringLiteral("SELECT hour, profile_id, count FROM keypresses "
                                      "ORDER BY hour, profile_id")),
        (QStringList{QStringLiteral("9 0 1"), QStringLiteral("10 0 0"), QStringLiteral("10 7 1")}));
    QCOMPARE(
        m_client->rows(QStringLiteral("SELECT hour, profile_id, count FROM keypress_frequency "
                                      "ORDER BY hour, profile_id")),
        (QStringList{QStringLiteral("9 0 3"), QStringLiteral("10 0 3"), QStringLiteral("10 7 3")}));
}

void KeypressesStatTest::countsOnlyWhatIsTypedWhileOn()
{
    QCOMPARE(m_client->system.inputHolders, 1);
    m_stat->setEnabled(false);
    QCOMPARE(m_client->system.inputHolders, 0);
    m_client->system.keys = {Qt::Key_S, Qt::Key_E, Qt::Key_C};
    m_stat->setEnabled(true);
    m_stat->update();
    QVERIFY(m_client->rows(QStringLiteral("SELECT * FROM keypress_frequency")).isEmpty());
}

void KeypressesStatTest::filesCombinations_data()
{
    QTest::addColumn<KeyCombination>("combination");
    QTest::addColumn<QStringList>("rows");
    using Rows = QStringList;
    QTest::newRow("plain key") << KeyCombination{.key = 65} << Rows{};
    QTest::newRow("two modifiers") << KeyCombination{.control = true, .shift = true, .key = 65}
                                   << Rows{QStringLiteral("control,shift,65 1")};
    QTest::newRow("all modifiers")
        << KeyCombination{.control = true,
                          .option = true,
                          .shift = true,
                          .command = true,
                          .fn = true,
                          .key = Qt::Key_F1}
        << Rows{QStringLiteral("control,option,shift,command,fn,16777264 1")};
}

void KeypressesStatTest::filesCombinations()
{
    QFETCH(KeyCombination, combination);
    m_client->system.combinations = {combination, combination};
    type({});
    QTEST(m_client->rows(QStringLiteral("SELECT combo, count FROM keycombo_frequency")), "rows");
    QTEST(m_client->rows(QStringLiteral("SELECT combo, count FROM keycombo_frequency_application "
                                        "WHERE path='/usr/bin/editor'")),
          "rows");
}

void KeypressesStatTest::hidesTheOrderOfKeys()
{
    Log::start(m_client->directory.path());
    Log::setLevel(Log::Level::Debug);
    QList<Qt::Key> typed;
    QStringList order;
    for (int key = Qt::Key_A; key <= Qt::Key_T; ++key) {
        typed += static_cast<Qt::Key>(key);
        order += QString::number(key);
    }
    type(typed, 1);
    type(typed, 2);
    Log::stop();

    QStringList stored[2];
    for (int hour : {1, 2}) {
        stored[hour - 1] = m_client->rows(
            QStringLiteral("SELECT key FROM keypress_frequency WHERE hour=%1 ORDER BY rowid")
                .arg(hour));
        QCOMPARE(stored[hour - 1].size(), order.size());
        QVERIFY(stored[hour - 1] != order);
    }
    QVERIFY(stored[0] != stored[1]);
    QFile log(m_client->directory.filePath(QStringLiteral("app.log")));
    QVERIFY(log.open(QIODevice::ReadOnly));
    QCOMPARE(log.readAll(), QByteArray());
}

void KeypressesStatTest::goesOnAfterTheDatabaseWasReopened()
{
    type({Qt::Key_A});
    m_client->database.closeDatabase();
    QVERIFY(m_client->database.reconnectIfNeeded());
    type({Qt::Key_A});
    QCOMPARE(m_client->rows(QStringLiteral("SELECT key, count FROM keypress_frequency")),
             QStringList{QStringLiteral("65 2")});
}

REGISTER_TEST(KeypressesStatTest);
#include "KeypressesStatTest.moc"
