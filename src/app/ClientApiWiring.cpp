// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/ClientApiWiring.h"

#include "app/Application.h"
#include "app/MainWindowHost.h"
#include "clientapi/ClientApiServer.h"
#include "profiles/ProfileManager.h"
#include "ui/settings/ClientApiState.h"
#include "ui/settings/SettingsDialog.h"

namespace {

void showIn(SettingsDialog& dialog, const ClientApiServer& server)
{
    dialog.setClientApiState({.httpPort = server.getHttpPort(),
                              .websocketPort = server.getWebsocketPort(),
                              .refusedPort = server.refusedPort()});
}

} // namespace

std::unique_ptr<ClientApiServer> ClientApiWiring::create(Application& application,
                                                         MainWindowHost& window,
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
    // Of the server's context: at the end it goes before the window, and nothing is applied then.
    const auto follow = [&application, served = server.get()](SettingsDialog* dialog) {
        QObject::connect(dialog, &SettingsDialog::settingsChanged, served,
                         [&application] { application.applySettingsSlot(); });
        QObject::connect(served, &ClientApiServer::stateChanged, dialog,
                         [served, dialog] { showIn(*dialog, *served); });
        showIn(*dialog, *served);
    };
    QObject::connect(&window, &MainWindowHost::settingsOpened, server.get(), follow);
    server->changeState();
    return server;
}
