// SPDX-License-Identifier: GPL-3.0-or-later
#include "account/SeriesByHand.h"
#include "account/ZurgeGenerateTimeSeries.h"
#include "support/TestDatabase.h"
#include "support/TestRegistry.h"

#include <QRandomGenerator>
#include <QTest>

namespace {

const QDate Today(2026, 11, 21);

QString day(int before)
{
    return Today.addDays(-before).toString(Qt::ISODate);
}

QDateTime at(const QDate& date, int hour)
{
    return {date, QTime(hour, 30)};
}

} // namespace

class ZurgeGenerateTimeSeriesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void equalsTheRowsAddedByHand_data();
    void equalsTheRowsAddedByHand();
    void tellsWholeMebibytesRowByRow_data();
    void tellsWholeMebibytesRowByRow();
    void goesOnWhereTheLastOneEnded();
    void keepsTheMarkWhereReadingFailed();

private:
    void fillAtRandom();

    bool insert(const QString& table, const QString& values) const
    {
        return m_database->exec(
            QStringLiteral("INSERT OR IGNORE INTO %1 VALUES (%2)").arg(table, values));
    }

    std::unique_ptr<TestDatabase> m_database;
};

void ZurgeGenerateTimeSeriesTest::init()
{
    m_database.reset();
    m_database = std::make_unique<TestDatabase>();
    // Two programs that the service takes for one, one that it does not know, one not yet sent.
    m_database->exec(QStringLiteral("INSERT INTO applications (path, sent_online, online_app_id) "
                                    "VALUES ('/a', 1, 7), ('/b', 1, 7), ('/c', 1, 0), "
                                    "('/d', 1, 12), ('/e', 0, NULL)"));
}

void ZurgeGenerateTimeSeriesTest::fillAtRandom()
{
    QRandomGenerator random(20261121);
    const auto number = [&random](int below) { return QString::number(random.bounded(below)); };
    const auto inches = [&random] { return QString::number(random.bounded(4000) / 4.0); };
    const auto path = [&random] {
        return QStringLiteral("'/%1'").arg(QLatin1Char("abcdef"[random.bounded(6)]));
    };
    m_database->database()->connection().transaction();
    for (int i = 0; i < 3000; ++i) {
        const QString hour = QStringLiteral("'%1', %2").arg(day(random.bounded(9) - 1), number(24));
        const QString profile = number(4);
        const auto row = [](const QStringList& columns) {
            return columns.join(QStringLiteral(", "));
        };
        insert(QStringLiteral("keypresses"), row({hour, number(9000), profile}));
        insert(QStringLiteral("mouseclicks"), row({hour, number(900), profile}));
        insert(QStringLiteral("mousescrolls"), row({hour, number(4), number(900), profile}));
        insert(QStringLiteral("mousedistance"), row({hour, inches(), profile}));
        insert(QStringLiteral("uptime_hour"), row({hour, number(3600000), profile}));
        insert(QStringLiteral("network_interface_bandwidth"),
               row({hour, number(4000000), number(4000000), number(3)}));
        insert(QStringLiteral("application_active_hour"),
               row({hour, number(3600), path(), profile}));
        insert(QStringLiteral("input_per_application"),
               row({hour, path(), number(90), number(90), inches(), number(90), profile}));
        insert(QStringLiteral("application_bandwidth"),
               row({hour, number(3000000), number(3000000), path(), profile}));
    }
    m_database->database()->connection().commit();
}

void ZurgeGenerateTimeSeriesTest::equalsTheRowsAddedByHand_data()
{
    QTest::addColumn<bool>("applications");
    QTest::newRow("with applications") << true;
    QTest::newRow("without") << false;
}

void ZurgeGenerateTimeSeriesTest::equalsTheRowsAddedByHand()
{
    QFETCH(bool, applications);
    fillAtRandom();
    Settings::instance().setValue(SettingsKeys::OnlineSendApplications, applications);
    const QDate first = Today.addDays(-6);
    SeriesByHand byHand(m_database->database()->getDatabaseFileName(), first, Today);
    const auto expected = applications ? byHand.everything() : byHand.totalsAndProfiles();
    QVERIFY(expected.size() > 500);
    // Late on the first day and early on the last one: both count whole.
    const auto series = ZurgeGenerateTimeSeries(at(first, 22), at(Today, 1)).getTimeSeries();
    QCOMPARE(SeriesByHand::difference(expected, series), QString());
}

void ZurgeGenerateTimeSeriesTest::tellsWholeMebibytesRowByRow_data()
{
    QTest::addColumn<QString>("bytes"); // Of one hour, each number a row.
    QTest::addColumn<qint64>("computer");
    QTest::addColumn<qint64>("application"); // Its rows are added up first, over the profiles.
    QTest::newRow("a MiB is none") << QStringLiteral("1048576") << qint64(0) << qint64(0);
    QTest::newRow("a byte more is one") << QStringLiteral("1048577") << qint64(1) << qint64(1);
    QTest::newRow("rounded down") << QStringLiteral("3145727") << qint64(2) << qint64(2);
    QTest::newRow("small rows vanish")
        << QStringLiteral("1048576 1048576 2097152") << qint64(2) << qint64(4);
    QTest::newRow("the most") << QStringLiteral("1048576000000000") << qint64(1000000000)
                              << qint64(1000000000);
    QTest::newRow("damage") << QStringLiteral("1048577000000000 2097152") << qint64(2) << qint64(0);
    QTest::newRow("below zero") << QStringLiteral("-5000000 2097152") << qint64(2) << qint64(0);
}

void ZurgeGenerateTimeSeriesTest::tellsWholeMebibytesRowByRow()
{
    QFETCH(QString, bytes);
    int row = 0;
    for (const QString& number : bytes.split(QLatin1Char(' '))) {
        ++row;
        QVERIFY(insert(QStringLiteral("network_interface_bandwidth"),
                       QStringLiteral("'%1', 9, %2, 0, '%3'").arg(day(0), number).arg(row)));
        QVERIFY(insert(QStringLiteral("application_bandwidth"),
                       QStringLiteral("'%1', 9, 0, %2, '/d', %3").arg(day(0), number).arg(row)));
    }
    const auto series = ZurgeGenerateTimeSeries(at(Today, 0), at(Today, 1)).getTimeSeries();
    const auto value = [&series](const char* subject, const char* counter) {
        return series.value(day(0) + QStringLiteral("_9_") + QLatin1String(subject))
            .toMap()
            .value(QLatin1String(counter))
            .toLongLong();
    };
    QTEST(value("totals", "download"), "computer");
    QTEST(value("12", "upload"), "application");
}

void ZurgeGenerateTimeSeriesTest::goesOnWhereTheLastOneEnded()
{
    const QDateTime begin = QDateTime::currentDateTime().addSecs(-1);
    const QDate today = begin.date();
    for (int before = 0; before < 10; ++before) {
        QVERIFY(insert(
            QStringLiteral("keypresses"),
            QStringLiteral("'%1', 5, 1, 0").arg(today.addDays(-before).toString(Qt::ISODate))));
    }
    QCOMPARE(ZurgeGenerateTimeSeries().getTimeSeries().size(), 8); // A week ago counts whole.
    const QDateTime mark = Settings::instance().value(SettingsKeys::TimeSeriesLastSent);
    QVERIFY(begin <= mark && mark <= QDateTime::currentDateTime());
    QCOMPARE(ZurgeGenerateTimeSeries().getTimeSeries().size(), 1);
    Settings::instance().setValue(SettingsKeys::TimeSeriesLastSent, mark.addDays(-3));
    QCOMPARE(ZurgeGenerateTimeSeries().getTimeSeries().size(), 4);
}

void ZurgeGenerateTimeSeriesTest::keepsTheMarkWhereReadingFailed()
{
    const QDateTime before = at(Today.addDays(-2), 8);
    Settings::instance().setValue(SettingsKeys::TimeSeriesLastSent, before);
    QVERIFY(insert(QStringLiteral("keypresses"), QStringLiteral("'%1', 5, 1, 0").arg(day(0))));
    QVERIFY(m_database->exec(QStringLiteral("DROP TABLE mousescrolls")));
    QCOMPARE(ZurgeGenerateTimeSeries(before, at(Today, 1)).getTimeSeries().size(), 1);
    QCOMPARE(Settings::instance().value(SettingsKeys::TimeSeriesLastSent), before);
}

REGISTER_TEST(ZurgeGenerateTimeSeriesTest);
#include "ZurgeGenerateTimeSeriesTest.moc"
