// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "account/Authorization.h"
#include "account/LocalStats.h"
#include "app/AccountServices.h"
#include "profiles/ProfileManager.h"
#include "service/AccountService.h"
#include "support/TestDatabase.h"

#include <QTest>

/// What the client has for an account, and a whole service that checks each request. Nobody is
/// signed in.
class LinkedClient
{
public:
    LinkedClient()
        : service(m_directory.path(), AccountService::Transport::Plain)
    {
        service.start();
        Settings& settings = Settings::instance();
        settings.setValue(SettingsKeys::ServiceApiUrl, service.apiUrl());
        settings.setValue(SettingsKeys::ServiceWebsiteUrl, service.websiteUrl());
        localStats.setup(database.directory());
        services = std::make_unique<AccountServices>(AccountServices::Parts{
            *database.database(), localStats, profiles, database.directory(), [] { return true; }});
        services->applySettings();
    }

    ServiceComputer computer(const QString& userName = QStringLiteral("ann"))
    {
        ServiceStore& store = service.store();
        return store.computerNamed(store.account(userName), QStringLiteral("desk"));
    }

    void signIn(const QString& userName = QStringLiteral("ann"))
    {
        const ServiceComputer desk = computer(userName);
        Authorization authorization;
        authorization.identity = {.userId = desk.accountId,
                                  .computerId = desk.id,
                                  .email = userName,
                                  .userName = userName,
                                  .computer = desk.name,
                                  .passwordHash = desk.passwordHash};
        authorization.zurgeToken = desk.zurgeToken;
        localStats.signIn(authorization);
    }

    /// Whether `condition` comes true within some seconds.
    template <typename Condition>
    static bool comes(Condition condition)
    {
        constexpr int patienceMs = 20'000;
        return QTest::qWaitFor(condition, patienceMs);
    }

private:
    QTemporaryDir m_directory;

public:
    TestDatabase database;
    AccountService service;
    LocalStats localStats;
    ProfileManager profiles;
    std::unique_ptr<AccountServices> services;
};
