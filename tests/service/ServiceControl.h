// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "service/AccountService.h"

#include <QJsonObject>

/// Lets another process steer the service: a JSON object POSTed to "/control", over plain HTTP on a
/// port of its own, is one command, named by its field "command"; the answer is a JSON object, with
/// "error" where the command was not understood. tests/service/README.md lists the commands.
class ServiceControl
{
public:
    explicit ServiceControl(AccountService& service);

    /// Returns the port; 0 where it could not listen.
    quint16 start(quint16 port = 0);

    QJsonObject execute(const QJsonObject& command);

private:
    using Handler = QJsonObject (ServiceControl::*)(const QJsonObject&);

    static const QHash<QString, Handler>& handlers();

    QJsonObject addFault(const QJsonObject& command);
    QJsonObject soak(const QJsonObject& command);
    QJsonObject clearFaults(const QJsonObject& command);
    QJsonObject addComputer(const QJsonObject& command);
    QJsonObject agreeAtOnce(const QJsonObject& command);
    QJsonObject archive(const QJsonObject& command);
    QJsonObject addMessage(const QJsonObject& command);
    QJsonObject forgetClientTokens(const QJsonObject& command);
    QJsonObject state(const QJsonObject& command);
    QJsonObject forgetRequests(const QJsonObject& command);
    QJsonObject stop(const QJsonObject& command);
    QJsonObject resume(const QJsonObject& command);

    AccountService& m_service;
    HttpListener m_listener;
};
