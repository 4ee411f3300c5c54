// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Requirements.h"

#include "account/Aes.h"
#include "storage/DatabasePrompts.h"

#include <QCoreApplication>
#include <QSystemTrayIcon>

namespace {

/// Gives the context of the translations.
struct Text
{
    Q_DECLARE_TR_FUNCTIONS(Requirements)
};

bool hasTray()
{
    // A Wayland desktop may show the icon by means that Qt does not know of.
    return QSystemTrayIcon::isSystemTrayAvailable() ||
           qEnvironmentVariable("XDG_SESSION_TYPE") == QLatin1String("wayland");
}

} // namespace

bool Requirements::areMet(DatabasePrompts& prompts)
{
    if (!hasTray()) {
        prompts.showFailure(
            QStringLiteral("No system tray"),
            Text::tr("Couldn't detect any system tray on this system, and I need that to run."));
        return false;
    }
    if (!Aes::isSupported()) {
        prompts.showFailure(QStringLiteral("AES failure"),
                            Text::tr("AES functions not available. Is OpenSSL library present?"));
        return false;
    }
    return true;
}
