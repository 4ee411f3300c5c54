// SPDX-License-Identifier: GPL-3.0-or-later
#include "account/ResultCodes.h"

#include "account/RequestTypes.h"

#include <QCoreApplication>

#include <algorithm>
#include <array>

namespace {

struct Row
{
    int status;
    Outcome outcome;
    const char* message;
};

constexpr std::array<Row, 14> Rows{{
    {ResultCodes::Success, Outcome::Success, QT_TRANSLATE_NOOP("ResultCodes", "Success.")},
    {205, Outcome::Success, QT_TRANSLATE_NOOP("ResultCodes", "Success.")},
    {ResultCodes::UnknownAccount, Outcome::Failure,
     QT_TRANSLATE_NOOP("ResultCodes", "Account or computer unknown! Did you register?")},
    {301, Outcome::Failure, QT_TRANSLATE_NOOP("ResultCodes", "Wrong password! Try again.")},
    {302, Outcome::Failure,
     QT_TRANSLATE_NOOP("ResultCodes",
                       "Activity throttled breached, this means your keys or clicks per second is "
                       "too high. Wait an hour or so to lower it and try again.")},
    {303, Outcome::Failure,
     QT_TRANSLATE_NOOP("ResultCodes",
                       "Wrong token, did you use this profile on another computer?")},
    {304, Outcome::Failure,
     QT_TRANSLATE_NOOP("ResultCodes", "Requested username is already registered! Please choose "
                                      "another username and try again.")},
    {305, Outcome::Failure,
     QT_TRANSLATE_NOOP("ResultCodes", "Zurge throttled. You can only zurge every 60 seconds.")},
    {ResultCodes::UnknownOrganization, Outcome::Failure,
     QT_TRANSLATE_NOOP("ResultCodes", "Organization not found.")},
    {ResultCodes::Maintenance, Outcome::Failure,
     QT_TRANSLATE_NOOP("ResultCodes",
                       "Server is down due to maintenance, please try again later.")},
    {ResultCodes::ServerError, Outcome::Failure,
     QT_TRANSLATE_NOOP("ResultCodes", "Internal server error. Please try again later.")},
    {ResultCodes::MissingInput, Outcome::Failure,
     QT_TRANSLATE_NOOP("ResultCodes",
                       "Server error: Missing input! Please contact the developers.")},
    {ResultCodes::TokenLost, Outcome::TokenLost,
     QT_TRANSLATE_NOOP("ResultCodes", "The website is not responding correctly to your request, "
                                      "please try again later.")},
    {ResultCodes::Archived, Outcome::Archived,
     QT_TRANSLATE_NOOP("ResultCodes", "This computer is archived, and isn't able to connect to "
                                      "your account.")},
}};

QString translated(const char* text)
{
    return QCoreApplication::translate("ResultCodes", text);
}

RequestResult lookUp(int status)
{
    const auto* row = std::ranges::find(Rows, status, &Row::status);
    return row == Rows.end() ? RequestResult{Outcome::Unknown, status}
                             : RequestResult{row->outcome, status, translated(row->message)};
}

} // namespace

namespace ResultCodes {

bool isSuccess(int status)
{
    return lookUp(status).outcome == Outcome::Success;
}

RequestResult ofRequest(const QString& requestType, int status)
{
    RequestResult result = lookUp(status);
    if (result.outcome == Outcome::Unknown && requestType == RequestTypes::UploadFile) {
        return {Outcome::Success, Success,
                translated(
                    QT_TRANSLATE_NOOP("ResultCodes", "Success, your file is now on the website!"))};
    }
    return result;
}

RequestResult ofSignIn(int status, const QMap<QString, QVariant>& data)
{
    RequestResult result = lookUp(status);
    if (status == UnknownAccount && data.contains(QStringLiteral("pending_user"))) {
        result.message = translated(QT_TRANSLATE_NOOP(
            "ResultCodes", "Your account is pending activation, please check your "
                           "email and try again after activating."));
    }
    return result;
}

} // namespace ResultCodes
