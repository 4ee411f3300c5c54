// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>

class Application;
class ClientApiServer;
class LocalStats;
class MainWindowHost;
class ProfileManager;

/// Connects the client API with those who do what its clients ask for, and with its settings.
/// Thread: main.
namespace ClientApiWiring {

/// The server, started where the settings want it, and shown in those of `window`. All four
/// outlive it.
std::unique_ptr<ClientApiServer> create(Application& application, MainWindowHost& window,
                                        const LocalStats& localStats, ProfileManager& profiles);

} // namespace ClientApiWiring
