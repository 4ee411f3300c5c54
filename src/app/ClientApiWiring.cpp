// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/ClientApiWiring.h"

#include "app/Application.h"
#include "clientapi/ClientApiServer.h"
#include "profiles/ProfileManager.h"

std::unique_ptr<ClientApiServer> ClientApiWiring::create(Application& application,
                                                         const LocalStats& localStats,
                                                         ProfileManager& profiles)
{
    auto server = std::make_unique<ClientApiServer>(localStats, application.liveRates(), profiles);
    QObject::connect(server.get(), &ClientApiServer::apiWantsToZurge, &application,
                     &Application::doZurge);
    QObject::connect(server.get(), &ClientApiServer::apiWantsToOpenMainWindow, &application,
                     &Application::openMainWindow);
    QObject::connect(server.get(), &ClientApiServer::apiWantsToActivateProfile, &profiles,
                     &ProfileManager::setActiveStatsProfile);
    QObject::connect(server.get(), &ClientApiServer::signalNeedTrayIconMessage, &application,
                     &Application::slotNeedTrayIconMessage);
    server->changeState();
    return server;
}
