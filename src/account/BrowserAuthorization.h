// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "account/AccountIdentity.h"

#include <QDateTime>
#include <QList>
#include <QMap>
#include <QObject>
#include <QString>
#include <QTimer>
#include <QUrl>
#include <QVariant>

/// A backup that the service keeps. Plain value.
struct OnlineBackup
{
    QString fileName;
    QDateTime createdAt; ///< Local time; invalid where the service does not say.
    qint64 bytes = 0;    ///< 0 where the service does not say.
};

/// What the service hands over once the user has authorised this computer. Plain value.
struct Authorization
{
    AccountIdentity identity;
    QString zurgeToken;
    QDateTime lastZurge;
    QMap<QString, QVariant> totals;
    QMap<QString, QVariant> ranks;
    QMap<QString, QVariant> computerStats; ///< Empty: a new computer.
    QList<OnlineBackup> backups;           ///< Newest first.
    QMap<QString, QVariant> clientSettings;
};

class ClientCommunication;

/// Links this computer to an account through the browser: asks the service to expect it, lets the
/// page be opened, and asks every four seconds whether the user has agreed. Thread: main.
class BrowserAuthorization : public QObject
{
    Q_OBJECT

public:
    BrowserAuthorization(ClientCommunication& communication, const QUrl& website,
                         QObject* parent = nullptr);

    void begin();  ///< Again, after a failure, with a new id.
    void cancel(); ///< Nothing is heard from this attempt any more.

Q_SIGNALS:
    void browserNeeded(const QUrl& page);         ///< Waiting for the user has begun.
    void failed(const QString& text);             ///< For the user to read.
    void authorized(const Authorization& answer); ///< Nothing is stored yet.
};
