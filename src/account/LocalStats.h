// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDateTime>
#include <QHash>
#include <QObject>
#include <QString>

/// Counts gathered since the last zurge. Plain value.
struct UnzurgedCounts
{
    quint64 keys = 0;
    quint64 clicks = 0;
    quint64 download = 0;       ///< Bytes.
    quint64 upload = 0;         ///< Bytes.
    quint64 uptime = 0;         ///< Milliseconds in memory and in the file; see `LocalStats`.
    quint64 scrolls = 0;        ///< Steps.
    quint64 distanceInches = 0; ///< Whole inches.

    friend bool operator==(const UnzurgedCounts&, const UnzurgedCounts&) = default;
};

/// The counts not yet sent to the account service, in all and per application. Thread: main.
class LocalStats : public QObject
{
    Q_OBJECT

public:
    explicit LocalStats(QObject* parent = nullptr);
    ~LocalStats() override;

    /// The one store; null before it was created.
    static LocalStats* instance();

    /// Loads the counters from the ".tvw" file in `dataDirectory` or from the database's copy,
    /// whichever is newer. The database must be open.
    void setup(const QString& dataDirectory);

    /// Writes the ".tvw" file. False (and a log line) where it could not be written.
    bool saveSettings();

    /// Brings the copy in the tables `unzurged_stats` and `pending_applications_stats` up to date.
    /// Called inside the collector's transaction, once a minute, and by `saveSettings`' callers at exit.
    void writeDatabaseCopy();

    void increaseKeys(int count);
    void increaseAppKeys(const QString& path, int count);

    const UnzurgedCounts& unzurged() const;
    const QHash<QString, UnzurgedCounts>& unzurgedPerApplication() const;
};
