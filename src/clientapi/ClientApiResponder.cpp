// SPDX-License-Identifier: GPL-3.0-or-later
#include "clientapi/ClientApiResponder.h"

#include "base/Log.h"
#include "clientapi/ClientApiResponses.h"
#include "clientapi/ProfileRequest.h"
#include "profiles/ProfileManager.h"

#include <QFile>
#include <QHostAddress>
#include <QHttpServerRequest>
#include <QJsonDocument>
#include <QJsonObject>
#include <QUrl>

#include <algorithm>
#include <array>
#include <optional>

namespace {

using StatusCode = QHttpServerResponder::StatusCode;

constexpr auto Json = "application/json";

struct Statistics
{
    QLatin1String path;
    QJsonObject (*build)(const ClientApiResponses& responses) = nullptr;
};

/// A file of the resources, under the same name.
struct Page
{
    QLatin1String path;
    QLatin1String file;
    const char* type = nullptr;
};

constexpr std::array AllStatistics{
    Statistics{
        QLatin1String("/v1/account-totals"),
        [](const ClientApiResponses&) { return ClientApiResponses::formatAccountTotalStats(); }},
    Statistics{QLatin1String("/v1/realtime"),
               [](const ClientApiResponses& all) { return all.formatRealtimeStats(); }},
    Statistics{QLatin1String("/v1/unzurged"),
               [](const ClientApiResponses& all) { return all.formatUnzurgedStats(); }},
    Statistics{QLatin1String("/v1/all-stats"),
               [](const ClientApiResponses& all) { return all.formatAllStats(); }},
    Statistics{QLatin1String("/v1/profiles"),
               [](const ClientApiResponses& all) { return all.formatProfiles(); }},
};

constexpr std::array Pages{
    Page{QLatin1String("/tallyvane-api-spec.json"),
         QLatin1String(":/clientapi/tallyvane-api-spec.json"), Json},
    Page{QLatin1String("/tallyvane-api-spec.yaml"),
         QLatin1String(":/clientapi/tallyvane-api-spec.yaml"), "application/yaml"},
    Page{QLatin1String("/"), QLatin1String(":/clientapi/index.html"), "text/html; charset=utf-8"},
    Page{QLatin1String("/swagger-ui"), QLatin1String(":/clientapi/index.html"),
         "text/html; charset=utf-8"},
    Page{QLatin1String("/swagger-ui.css"), QLatin1String(":/clientapi/swagger-ui.css"),
         "text/css; charset=utf-8"},
    Page{QLatin1String("/swagger-ui-bundle.js"), QLatin1String(":/clientapi/swagger-ui-bundle.js"),
         "text/javascript; charset=utf-8"},
    Page{QLatin1String("/swagger-ui-standalone-preset.js"),
         QLatin1String(":/clientapi/swagger-ui-standalone-preset.js"),
         "text/javascript; charset=utf-8"},
};

QHttpServerResponse answer(const QJsonObject& object, StatusCode status = StatusCode::Ok)
{
    return {Json, QJsonDocument(object).toJson(QJsonDocument::Compact), status};
}

QHttpServerResponse message(const QString& text)
{
    return answer({{QStringLiteral("msg"), text}});
}

QHttpServerResponse error(const QString& text, StatusCode status)
{
    return answer({{QStringLiteral("error"), text}}, status);
}

QHttpServerResponse withoutBody(StatusCode status)
{
    return {Json, QByteArray(), status};
}

QHttpServerResponse notFound()
{
    return error(QStringLiteral("Not found."), StatusCode::NotFound);
}

/// Exactly as it was asked for: "/v1%2Fzurge" is no "/v1/zurge".
QString pathOf(const QHttpServerRequest& request)
{
    return request.url().path(QUrl::FullyEncoded);
}

/// The profile of that id, the default one among them.
std::optional<Profile> findProfile(const ProfileManager& manager, int id)
{
    if (id == ProfileManager::DefaultProfileId) {
        return Profile{.id = id, .name = ProfileManager::tr("General")};
    }
    const QList<Profile> profiles = manager.profiles();
    const auto found = std::find_if(profiles.cbegin(), profiles.cend(),
                                    [id](const Profile& profile) { return profile.id == id; });
    return found == profiles.cend() ? std::nullopt : std::optional(*found);
}

} // namespace

ClientApiResponder::ClientApiResponder(const ClientApiResponses& responses,
                                       const ProfileManager& profiles, QObject* parent)
    : QObject(parent)
    , m_responses(responses)
    , m_profiles(profiles)
{
}

QHttpServerResponse ClientApiResponder::responseToGetRequest(const QHttpServerRequest& request)
{
    const QString path = pathOf(request);
    Log::debug("{} path={}", Q_FUNC_INFO, path);
    QHttpServerResponse response = answerToGet(path);
    setResponseMetadata(response);
    return response;
}

QHttpServerResponse ClientApiResponder::answerToGet(const QString& path) const
{
    for (const Statistics& statistics : AllStatistics) {
        if (path == statistics.path) {
            return answer(statistics.build(m_responses));
        }
    }
    for (const Page& page : Pages) {
        if (path == page.path) {
            QHttpServerResponse response = returnFile(page.file);
            if (response.statusCode() == StatusCode::Ok) {
                response.setHeader("Content-Type", page.type);
            }
            return response;
        }
    }
    return notFound();
}

QHttpServerResponse ClientApiResponder::responseToPostRequest(const QHttpServerRequest& request)
{
    const QString path = pathOf(request);
    Log::debug("{} path={}", Q_FUNC_INFO, path);
    const QString address = request.remoteAddress().toString();
    QHttpServerResponse response = withoutBody(StatusCode::NotFound);
    if (path == QLatin1String("/v1/zurge")) {
        response = handleZurge(address);
    } else if (path == QLatin1String("/v1/open-window")) {
        response = handleOpenWindow(address);
    } else if (path == QLatin1String("/v1/profiles/activate")) {
        response = handleProfileActivation(request.body(), address);
    }
    setResponseMetadata(response);
    return response;
}

/// Without a body, as the answer to HEAD has none.
QHttpServerResponse ClientApiResponder::handleOtherMethod()
{
    QHttpServerResponse response = withoutBody(StatusCode::MethodNotAllowed);
    response.setHeader("Allow", "GET, POST");
    setResponseMetadata(response);
    return response;
}

QHttpServerResponse ClientApiResponder::handleIpNotAllowed()
{
    QHttpServerResponse response =
        error(QStringLiteral("This IP address is not allowed to connect. Please check the allowed "
                             "IPs settings."),
              StatusCode::Unauthorized);
    setResponseMetadata(response);
    return response;
}

QHttpServerResponse ClientApiResponder::handleWebPage()
{
    QHttpServerResponse response =
        error(QStringLiteral("Requests from web pages are not allowed."), StatusCode::Forbidden);
    setResponseMetadata(response);
    return response;
}

QHttpServerResponse ClientApiResponder::handleZurge(const QString& address)
{
    Log::info("ClientApiResponder: Zurging on the request of the Client API from IP: {}", address);
    Q_EMIT apiWantsToZurge();
    return message(QStringLiteral("Zurge requested."));
}

QHttpServerResponse ClientApiResponder::handleOpenWindow(const QString& address)
{
    Log::info(
        "ClientApiResponder: Opening main window on the request of the Client API from IP: {}",
        address);
    Q_EMIT apiWantsToOpenMainWindow();
    return message(QStringLiteral("Requested window to be opened."));
}

QHttpServerResponse ClientApiResponder::handleProfileActivation(const QByteArray& body,
                                                                const QString& address)
{
    const std::optional<int> id = ProfileRequest::profileId(body);
    if (!id) {
        Log::info("ClientApiResponder: No profile id provided in the request.");
        return error(QStringLiteral("No profile id provided."), StatusCode::BadRequest);
    }
    const std::optional<Profile> profile = findProfile(m_profiles, *id);
    if (!profile) {
        Log::info("ClientApiResponder: No profile id provided in the request not found in "
                  "profiles.");
        return error(QStringLiteral("Profile id doesn't exist."), StatusCode::NotFound);
    }
    if (profile->id == ProfileManager::DefaultProfileId) {
        Log::info("ClientApiResponder: Activating default profile {}' on the request of the Client "
                  "API from IP: {}",
                  profile->name, address);
        Q_EMIT apiWantsToActivateProfile(profile->id, QString());
        return message(QStringLiteral("Default profile activated."));
    }
    Log::info("ClientApiResponder: Activating profile '{}' with id '{}' on the request of the "
              "Client API from IP: {}",
              profile->name, profile->id, address);
    Q_EMIT apiWantsToActivateProfile(profile->id, profile->name);
    return message(QStringLiteral("Profile '") + profile->name + QStringLiteral(" 'activated."));
}

QHttpServerResponse ClientApiResponder::returnFile(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        Log::warn("ClientApiResponder: There is no resource {}", path);
        return notFound();
    }
    return QHttpServerResponse(file.readAll());
}

void ClientApiResponder::setResponseMetadata(QHttpServerResponse& response)
{
    if (!response.hasHeader("Content-Type")) {
        response.setHeader("Content-Type", Json);
    }
    response.setHeader("Server", "Tallyvane Client API");
}
