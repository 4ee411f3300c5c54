// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "account/Authorization.h"

#include <QMap>
#include <QObject>
#include <QString>
#include <QTimer>
#include <QUrl>
#include <QVariant>

class ClientCommunication;

/// Links this computer to an account through the browser: asks the service to expect it, lets the
/// page be opened, and asks every four seconds whether the user has agreed. Thread: main.
///
///     Idle --begin--> Asking --200--> Waiting --the account--> Idle (authorized)
///
/// `cancel` leads back to Idle from everywhere, as does what cannot get better (failed).
/// An answer to a check that says nothing better than "try later" is waited out.
class BrowserAuthorization : public QObject
{
    Q_OBJECT

public:
    static constexpr int CheckIntervalMs = 4'000;

    /// `communication` must outlive this object.
    BrowserAuthorization(ClientCommunication& communication, const QUrl& website,
                         QObject* parent = nullptr);

    void begin();  ///< Again, after a failure, with a new id.
    void cancel(); ///< Nothing is heard from this attempt any more.

public Q_SLOTS:
    /// Asks whether the user has agreed, unless the last such question is still out. Comes by
    /// itself while waiting for the user; a good moment for one more is when the user says so.
    void checkNow();

Q_SIGNALS:
    void browserNeeded(const QUrl& page);         ///< Waiting for the user has begun.
    void failed(const QString& text);             ///< For the user to read.
    void authorized(const Authorization& answer); ///< Nothing is stored yet.

private:
    enum class Stage
    {
        Idle,
        Asking,  ///< The service, to expect this computer.
        Waiting, ///< For the user.
    };

    /// Requests of one type whose outcome is still out. Outcomes come in the order of the requests,
    /// so those of earlier attempts come first.
    struct Outstanding
    {
        int all = 0;
        int own = 0; ///< Of this attempt.

        void noteSent();
        bool takeOutcome(); ///< Whether it is one of this attempt's.
    };

    void takeAnswer(const QString& requestType, int status, const QMap<QString, QVariant>& data,
                    const QString& message);
    void takeDropped(const QString& requestType);
    void tick();
    void waitForUser();
    void takeCheck(int status, const QMap<QString, QVariant>& data);
    void fail(const QString& text);
    QUrl page() const;

    ClientCommunication& m_communication;
    QUrl m_website;
    QTimer m_timer;
    Stage m_stage = Stage::Idle;
    QString m_uid; ///< Of this attempt.
    Outstanding m_inits;
    Outstanding m_checks;
    int m_missed = 0; ///< Moments for a check that passed since the last one went out.
};
