// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDateTime>
#include <QHash>
#include <QLatin1String>
#include <QMap>
#include <QString>
#include <QVariant>

#include <initializer_list>

class DSqlQuery;

/// Turns the hourly rows of a range of days into the series that goes with a zurge: per hour the
/// totals of the computer, of each application that the service knows, and of each profile. Reads
/// the main database, which must be open; logs the range. Thread: main.
///
/// An entry's key is "day_hour_totals", "day_hour_<online application id>" or
/// "day_hour_profile-<id>"; its value maps `keys`, `clicks`, `scrolls`, `distance_inches`, `uptime`
/// (seconds), `download` and `upload` (MiB) to what was counted, without those that no row tells.
///
/// The range counts in whole days: a series built again repeats at most the day on which the last
/// one was built.
class ZurgeGenerateTimeSeries
{
public:
    /// From `time_series_last_sent`, or a week ago, until now.
    ZurgeGenerateTimeSeries();

    ZurgeGenerateTimeSeries(const QDateTime& from, const QDateTime& to);

    /// The series; stores the current time as `time_series_last_sent`. Where a statement failed,
    /// that stays as it was: the series lacks what was not read, and the next one catches up.
    QMap<QString, QVariant> getTimeSeries();

private:
    enum class Subject
    {
        Computer,
        Application,
        Profile,
    };

    enum class Unit
    {
        Count,
        Inches,
        Milliseconds, ///< Become seconds.
        Bytes,        ///< Become MiB.
    };

    struct Counter
    {
        QLatin1String name; ///< In the entry.
        QLatin1String column;
        Unit unit = Unit::Count;
    };

    using Entry = QMap<QString, QVariant>;

    void generateApplicationOnlineIDMap();
    void generateApplicationActiveTime();
    void generateApplicationInput();
    void generateApplicationNetwork();
    void generateTotalsClicks();
    void generateTotalsUptime();
    void generateTotalsKeys();
    void generateTotalsScrolls();
    void generateTotalsDistance();
    void generateTotalsNetwork();
    void generateProfileClicks();
    void generateProfileUptime();
    void generateProfileKeys();
    void generateProfileScrolls();
    void generateProfileDistance();
    void generateProfileNetwork();

    void generateApplications();
    void generateTotals();
    void generateProfiles();
    void generate(Subject subject, const QString& sql, std::initializer_list<Counter> counters);
    void addRows(Subject subject, DSqlQuery& query, std::initializer_list<Counter> counters);
    static QLatin1String ownerColumn(Subject subject);
    QString subjectName(Subject subject, const QVariant& stored) const;
    static void add(Entry& entry, const Counter& counter, const QVariant& stored);

    QDateTime m_from;
    QDateTime m_to;
    bool m_failed = false;                          ///< A statement did; it is in the log.
    QHash<QString, QString> m_applicationOnlineIds; ///< By path.
    QHash<QString, Entry> m_series;
};
