// SPDX-License-Identifier: GPL-3.0-or-later
#include "account/ServiceAddresses.h"

#include "account/HttpUrl.h"
#include "base/Log.h"
#include "storage/Settings.h"
#include "storage/SettingsKeys.h"

namespace {

/// One address: the places it is looked up in, in their order.
struct Source
{
    QString variable;
    SettingKey<QString> key;
    QString builtIn;
};

const Source& apiSource()
{
    static const Source source{QStringLiteral("TALLYVANE_API_URL"), SettingsKeys::ServiceApiUrl,
                               QStringLiteral("https://api.tallyvane.example/")};
    return source;
}

const Source& websiteSource()
{
    static const Source source{QStringLiteral("TALLYVANE_WEBSITE_URL"),
                               SettingsKeys::ServiceWebsiteUrl,
                               QStringLiteral("https://www.tallyvane.example")};
    return source;
}

const Source& releaseSource()
{
    static const Source source{QStringLiteral("TALLYVANE_RELEASE_URL"),
                               SettingsKeys::ServiceReleaseUrl,
                               QStringLiteral("https://release.tallyvane.example")};
    return source;
}

/// The address in `text`; empty where there is none that can be used.
QUrl usable(const QString& text, const QString& origin)
{
    if (text.trimmed().isEmpty()) {
        return {};
    }
    QUrl url = httpUrl(text);
    if (url.isEmpty()) {
        Log::warn("The address in {} is no http or https address and is passed over: {}", origin,
                  text);
    }
    return url;
}

QUrl find(const Source& source, const Settings& settings, const QProcessEnvironment& environment)
{
    QUrl url = usable(environment.value(source.variable), source.variable);
    if (url.isEmpty()) {
        url = usable(settings.value(source.key), source.key.name());
    }
    return url.isEmpty() ? QUrl(source.builtIn) : url;
}

/// Paths are appended to these: "https://host/" becomes "https://host".
QUrl withoutSlash(QUrl url)
{
    QString path = url.path();
    while (path.endsWith(QLatin1Char('/'))) {
        path.chop(1);
    }
    url.setPath(path);
    return url;
}

} // namespace

ServiceAddresses ServiceAddresses::from(const Settings& settings,
                                        const QProcessEnvironment& environment)
{
    return {.api = find(apiSource(), settings, environment),
            .website = withoutSlash(find(websiteSource(), settings, environment)),
            .release = withoutSlash(find(releaseSource(), settings, environment))};
}
