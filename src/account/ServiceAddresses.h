// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QProcessEnvironment>
#include <QUrl>

class Settings;

/// Where the account service is. Plain value.
///
/// Each address comes from the environment ("TALLYVANE_API_URL", "TALLYVANE_WEBSITE_URL",
/// "TALLYVANE_RELEASE_URL"), else from the settings, else from the build, whose own lie under a
/// domain that nobody can own. An address that is no http or https URL with a host is passed over,
/// and logged.
struct ServiceAddresses
{
    QUrl api;     ///< Every request is posted to it.
    QUrl website; ///< Without a slash at the end; its pages are opened in the browser.
    QUrl release; ///< Without a slash at the end; holds the files to download.

    static ServiceAddresses from(const Settings& settings, const QProcessEnvironment& environment);
};
