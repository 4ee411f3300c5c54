// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "account/AccountIdentity.h"
#include "account/TvwFile.h"
#include "account/UnzurgedCounts.h"

#include <QDateTime>
#include <QHash>
#include <QObject>
#include <QSet>
#include <QString>

#include <memory>
#include <optional>

class UnzurgedTables;

/// The counts not yet sent to the account service, in all and per application. Thread: main.
///
/// They are kept in two places: the ".tvw" file, saved every ten minutes, and a plain copy in the
/// database, brought up to date every minute inside the collector's transaction. At start the place
/// with the higher generation number wins, whole; the file at equal numbers, since it holds uptime
/// to the millisecond. So a kill at any instant loses at most one minute, and a database restored
/// from a backup does not bring old counts back.
///
/// The copy needs no word about whether the collector's transaction was committed: before each
/// write the generation in the table is compared with the one written last. Where they differ (the
/// transaction rolled back, the tables were emptied), everything is written again.
class LocalStats : public QObject
{
    Q_OBJECT

public:
    explicit LocalStats(QObject* parent = nullptr, MachineIdSource machineId = systemMachineId);
    ~LocalStats() override;

    /// The one store; null before it was created.
    static LocalStats* instance();

    /// Loads the counters from the ".tvw" file in `dataDirectory` or from the database's copy,
    /// whichever is newer. The database must be open; without one, the file alone serves.
    void setup(const QString& dataDirectory);

    /// Writes the ".tvw" file, unless nothing changed since it was written. False (and a log line)
    /// where it could not be written.
    bool saveSettings();

    /// Brings the copy in the tables `unzurged_stats` and `pending_applications_stats` up to date.
    /// Called inside the collector's transaction, once a minute and at exit.
    void writeDatabaseCopy();

    // Counts of zero and below add nothing; a counter that would exceed `CounterLimit` stays there.
    void increaseKeys(int count);
    void increaseAppKeys(const QString& path, int count);
    void increaseClicks(int count);
    void increaseAppClicks(const QString& path, int count);
    void increaseScrolls(int steps);
    void increaseAppScrolls(const QString& path, int steps);
    void increaseDistanceInches(quint64 inches);
    void increaseAppDistanceInches(const QString& path, quint64 inches);
    void increaseUptime(qint64 msecs);
    void increaseBandwidth(quint64 download,
                           quint64 upload); ///< Bytes that left the local network.
    void increaseAppBandwidth(const QString& path, quint64 download,
                              quint64 upload); ///< All bytes.

    /// The application was in front for so long. `time`, the end of that interval, is not kept: a
    /// sum has no use for it.
    void increaseAppUptime(const QString& path, int seconds, const QDateTime& time);

    const AccountIdentity& identity() const { return m_identity; }

    bool isLoggedIn() const { return m_identity.isSignedIn(); }

    void setIdentity(const AccountIdentity& identity);

    const UnzurgedCounts& unzurged() const;
    const QHash<QString, UnzurgedCounts>& unzurgedPerApplication() const;

private:
    void increase(quint64 UnzurgedCounts::*counter, quint64 amount);
    void increaseApp(const QString& path, quint64 UnzurgedCounts::*counter, quint64 amount);
    void numberChanges();
    void openDatabaseCopy();
    void closeDatabaseCopy();

    MachineIdSource m_machineId;
    std::unique_ptr<TvwFile> m_file;          ///< Null before `setup`.
    std::unique_ptr<UnzurgedTables> m_tables; ///< Null while the database is closed.

    AccountIdentity m_identity;
    UnzurgedState m_state;
    bool m_changed = false;                    ///< Since `m_state.generation` was given.
    QSet<QString> m_changedApplications;       ///< Since the copy was written.
    std::optional<quint64> m_savedGeneration;  ///< What this run knows to be in the file.
    std::optional<quint64> m_copiedGeneration; ///< What this run wrote last into the tables.
};
