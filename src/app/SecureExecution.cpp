// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/SecureExecution.h"

#include <QtGlobal>

#include <sys/auxv.h>

#include <algorithm>
#include <array>
#include <string_view>

namespace {

constexpr std::array PluginVariables = {"QT_PLUGIN_PATH", "QT_QPA_PLATFORM_PLUGIN_PATH",
                                        "GTK_MODULES",    "GTK3_MODULES",
                                        "GTK_PATH",       "GDK_PIXBUF_MODULE_FILE"};

/// Qt takes it with one dash or two.
bool namesPlugins(std::string_view argument)
{
    return argument == "-platformpluginpath" || argument == "--platformpluginpath";
}

} // namespace

void SecureExecution::refuseForeignPlugins(int& argc, char** argv)
{
    if (getauxval(AT_SECURE) == 0) {
        return;
    }
    for (const char* variable : PluginVariables) {
        qunsetenv(variable);
    }
    // The path that follows stays behind, and means nothing alone.
    char** const end = std::remove_if(argv, argv + argc, namesPlugins);
    *end = nullptr;
    argc = static_cast<int>(end - argv);
}
