// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>

class Application;
class ClientApiServer;
class LocalStats;
class ProfileManager;

/// Connects the client API with those who do what its clients ask for. Thread: main.
namespace ClientApiWiring {

/// The server, started where the settings want it. All three outlive it.
std::unique_ptr<ClientApiServer> create(Application& application, const LocalStats& localStats,
                                        ProfileManager& profiles);

} // namespace ClientApiWiring
