// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "account/AccountRecord.h"
#include "account/TvwFile.h"
#include "account/UnzurgedCounts.h"

#include <QDateTime>
#include <QHash>
#include <QMap>
#include <QObject>
#include <QSet>
#include <QString>
#include <QVariant>

#include <functional>
#include <memory>
#include <optional>

class ClientCommunication;
class UnzurgedTables;
class Zurge;
enum class ZurgeStart;
struct Authorization;
struct ZurgeRecord;
struct ZurgeService;

/// The counts not yet sent to the account service, in all and per application, and the account that
/// they are for. Thread: main.
///
/// They are kept in two places: the ".tvw" file, saved every ten minutes, and a plain copy in the
/// database, brought up to date every minute inside the collector's transaction. At start the place
/// with the higher generation number wins, whole; the file at equal numbers, since it holds uptime
/// to the millisecond. So a kill at any instant loses at most one minute, and a database restored
/// from a backup does not bring old counts back: neither an older one of this data directory, which
/// has a lower number, nor that of another, whose numbers do not count, as its lineage is another.
///
/// The account lies in the file alone, whichever place the counts come from, and is written there
/// at once when it changes. Where that fails, the file may know of amounts in flight that the copy
/// lacks already, since the zurge was confirmed: the number of zurges taken off, which is in both
/// places, tells, so that they are not taken off twice.
///
/// The copy needs no word about whether the collector's transaction was committed: before each
/// write the generation in the table is compared with the one written last. Where they differ (the
/// transaction rolled back, the tables were emptied), everything is written again.
class LocalStats : public QObject
{
    Q_OBJECT

public:
    explicit LocalStats(QObject* parent = nullptr, MachineIdSource machineId = systemMachineId,
                        std::function<QDateTime()> now = QDateTime::currentDateTime);
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

    const UnzurgedCounts& unzurged() const;
    const QHash<QString, UnzurgedCounts>& unzurgedPerApplication() const;

    const AccountRecord& account() const { return m_account; }

    const AccountIdentity& identity() const { return m_account.identity; }

    bool isLoggedIn() const { return m_account.identity.isSignedIn(); }

    /// Forgets what belongs to another account or computer: the zurge token and the time of the
    /// last zurge. The counts stay. So do amounts of which it is uncertain whether they were taken
    /// (logged): it is found out should that account come back before another one zurges.
    void setIdentity(const AccountIdentity& identity);

    /// Becomes the computer that the user has authorised, with its zurge token, totals and ranks.
    void signIn(const Authorization& authorization);
    void signOut(); ///< As `setIdentity` of nobody.

    /// Signs `communication` in as whoever is signed in here, now and later, sends zurges through
    /// it and hears what becomes of them. It outlives this object, or nothing is sent any more.
    void setCommunication(ClientCommunication& communication);

    /// Says how zurges are sent; before that, none is.
    void setZurgeService(ZurgeService service);

    /// Sends the unzurged counts, as `Zurge::begin` tells.
    bool doZurge(ZurgeStart start, const ZurgeWish& wish = {});

    /// Of a zurge under way: the button that starts one is off.
    bool isZurging() const;

    /// As `Zurge::suspendedUntil`.
    QDateTime automaticSuspendedUntil() const;

    /// The outcome of a "zurge" request, as `ClientCommunication::requestDone` tells it. One that
    /// was dropped has the status 0.
    void processZurgeResponse(int status, const QMap<QString, QVariant>& data,
                              const QString& message);

    /// The outcome of any "refresh_account_info" request, whoever made it.
    void processAccountInfo(int status, const QMap<QString, QVariant>& data,
                            const QString& message);

    /// No answer for long: another zurge may be asked for. Called by itself after 20 seconds.
    void resetZurgeButton();

    // What the zurge notes. Each is in the file once it returns, unless that could not be written
    // (logged): then it is tried again with the next save.

    /// Puts amounts on record before they are sent, in the place of another account's (logged).
    /// False where the file could not be written: then there is no such record, and they must not
    /// be sent.
    bool recordInFlight(const ZurgeInFlight& amounts);

    /// The service has not taken the amounts in flight: they are still in the counters.
    void forgetInFlight();

    /// The service has taken the amounts in flight: takes them off the counters. `token` goes with
    /// the next zurge; an empty one changes nothing.
    void settleInFlight(const QString& token);

    void setZurgeToken(const QString& token);
    void setLastZurge(const QDateTime& time); ///< Written with the next change.

Q_SIGNALS:
    void signalNeedZurgeButtonUpdated();
    void signalNeedTrayIconMessage(const QString& title, const QString& text);
    void signalZurgeFinishedSuccessfully();
    void signalZurgeRecorded(const ZurgeRecord& record); ///< See `Zurge::recorded`.
    void signalNeedMessageBox(const QString& title, const QString& text);
    void signalNeedComputerInfoUpload(); ///< The service has none of this computer.
    void signalNeedPendingMessages();    ///< The service is to be asked for messages.
    void signalIdentityChanged();

private:
    void increase(quint64 UnzurgedCounts::*counter, quint64 amount);
    void increaseApp(const QString& path, quint64 UnzurgedCounts::*counter, quint64 amount);
    void numberChanges();
    void noteAccountChange();
    void storeIdentitySettings() const;
    void load();
    void reportInFlight(const QString& what) const;
    void openDatabaseCopy();
    void closeDatabaseCopy();
    void forwardZurgeSignals();
    void takeOutcome(const QString& requestType, int status, const QMap<QString, QVariant>& data,
                     const QString& message);

    MachineIdSource m_machineId;
    std::unique_ptr<TvwFile> m_file;          ///< Null before `setup`.
    std::unique_ptr<UnzurgedTables> m_tables; ///< Null while the database is closed.

    AccountRecord m_account;
    bool m_accountChanged = false; ///< Since the file was written.
    UnzurgedState m_state;
    bool m_changed = false;                    ///< Since `m_state.generation` was given.
    QSet<QString> m_changedApplications;       ///< Since the copy was written.
    std::optional<quint64> m_savedGeneration;  ///< What this run knows to be in the file.
    std::optional<quint64> m_copiedGeneration; ///< What this run wrote last into the tables.

    std::unique_ptr<Zurge> m_zurge;
};
