// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "account/ZurgeAmounts.h"
#include "account/ZurgeRecord.h"
#include "account/ZurgeService.h"

#include <QDateTime>
#include <QMap>
#include <QObject>
#include <QString>
#include <QTimer>
#include <QVariant>

#include <functional>
#include <optional>

class LocalStats;
struct AccountInfo;
struct ZurgeAnswer;

/// Who starts a zurge.
enum class ZurgeStart
{
    Automatic,  ///< The client itself.
    Manual,     ///< The user, from the tray, the command line or the local API.
    MainWindow, ///< The user, from the main window, which can say why nothing happens.
};

/// Sends the unzurged counts to the account service, and takes off what it confirms. Thread: main.
///
/// The service changes the zurge token in the same moment in which it takes the amounts, so that
/// what became of a zurge without an answer can be asked for. The amounts are in the ".tvw" file
/// before they are sent; a kill leaves them there:
///
///     Clear --begin--> amounts on record, then sent
///                        |-- 200, understood: amounts taken off, new token and figures --> Clear
///                        |-- refused: amounts forgotten, they are still counted ---------> Clear
///                        |-- no answer, 500, an answer not understood, a kill -------> Uncertain
///
///     Uncertain --begin--> account info asked for
///                        |-- with the token that was sent: the same amounts sent again --> below
///                        |-- with another token: taken, and taken off -------------> as in Clear
///                        |-- without a token, or no answer: told to the user ------> Uncertain
///
///     Sent again --200, understood: amounts taken off, new token and figures ------------> Clear
///                |--anything else --------------------------------------------------> Uncertain
///
/// The amounts of one token never change once they went out: a service that takes the first of them
/// late after all refuses the second for its token, and whichever it took, the same is taken off.
///
/// Account info that arrives before the outcome of a zurge says nothing about it: the question may
/// have gone out first.
/// After a refusal for a wrong token it is asked for as well, since it brings the right one.
///
/// Where another account is signed in, or none, by the time of the answer, the amounts are taken
/// off or forgotten all the same, and nothing else changes.
class Zurge : public QObject
{
    Q_OBJECT

public:
    using Clock = std::function<QDateTime()>;
    using Map = QMap<QString, QVariant>;

    static constexpr qint64 ShortestPauseMs = 10'000; ///< From the begin of one to the next.
    static constexpr int ButtonResetMs = 20'000;
    static constexpr int MostFailures = 3; ///< Automatic ones in a row, before the suspension.
    static constexpr qint64 SuspensionSeconds = 3'601;

    /// `stats` holds the counts and the account, and outlives this object.
    Zurge(LocalStats& stats, Clock now);

    void setService(ZurgeService service);

    /// Starts a zurge. False where nothing was sent, nor asked: one is in progress, nobody is
    /// signed in, automatic ones are suspended, the client works offline, the last one began less
    /// than ten seconds ago, there is nothing to send, or the amounts could not be put on record.
    bool begin(ZurgeStart start, const ZurgeWish& wish);

    bool isInProgress() const { return m_inProgress; }

    /// Until when no automatic one is begun; invalid where they are not suspended.
    QDateTime suspendedUntil() const;

    void forget(); ///< The account is another: nothing that was begun for the last one goes on.

    /// The outcome of the zurge on the wire. An answer that is not understood changes nothing.
    void takeAnswer(int status, const Map& data, const QString& message);

    /// What the service says of the account, asked for here or elsewhere.
    void takeAccountInfo(int status, const Map& data, const QString& message);

    /// As above, from another answer of the service.
    void takeAccountInfo(const AccountInfo& info);

public Q_SLOTS:
    void resetZurgeButton(); ///< The answer takes long: another zurge may be asked for.

Q_SIGNALS:
    void buttonChanged();
    void finished();

    /// What is known of a zurge that was sent. Where it was `Unanswered`, another record of the
    /// same time follows once the service has told.
    void recorded(const ZurgeRecord& record);
    void trayMessage(const QString& title, const QString& text);
    void messageBox(const QString& title, const QString& text);
    void computerInfoWanted();
    void pendingMessagesWanted();

private:
    struct Asked
    {
        ZurgeStart start = ZurgeStart::Manual;
        ZurgeWish wish;
    };

    bool mayBegin(ZurgeStart start);
    bool isSuspended();
    bool isThrottled();
    bool askFirst(const Asked& asked);
    bool send(const Asked& asked);
    void sendAgain(ZurgeStart start, const ZurgeInFlight& amounts);
    bool transmit(const ZurgeInFlight& amounts, const QVariantList& applications);
    void goOn(const Asked& asked, const QString& token, const QString& failure);
    void takeAnswerToOther(int status, const Map& data);
    bool isUntaken(int status) const;
    void refused(int status, const QString& message);
    void succeed(const ZurgeAnswer& answer);
    void fail(ZurgeStart start, const QString& message);
    void record(const ZurgeInFlight& amounts, ZurgeRecord::Outcome outcome,
                const QString& message = {});
    void setInProgress(bool inProgress);

    LocalStats& m_stats;
    Clock m_now;
    ZurgeService m_service;
    QTimer m_buttonTimer;

    bool m_inProgress = false;
    ZurgeStart m_sentBy = ZurgeStart::Manual; ///< Who started the one in flight.
    bool m_awaited = false;                   ///< One was sent, and its outcome is still to come.
    bool m_isRepeated = false;                ///< The one in flight went out before.
    std::optional<Asked> m_waiting;           ///< What goes out once the account info is there.

    int m_failures = 0;         ///< Automatic ones in a row.
    QDateTime m_suspendedSince; ///< Invalid: not suspended.
};
