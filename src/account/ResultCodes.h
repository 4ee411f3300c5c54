// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QMap>
#include <QString>
#include <QVariant>

/// What an answer means for its request.
enum class Outcome
{
    Success,
    Failure,
    TokenLost, ///< The service knows the client token no more.
    Archived,  ///< The service will not serve this computer until the user says so there.
    Unknown,   ///< A code that says nothing.
};

/// How a request ends. Plain value.
struct RequestResult
{
    Outcome outcome = Outcome::Unknown;
    int status = 0; ///< What the requester is told.
    QString message = {};
};

/// The service's result codes. Any thread.
namespace ResultCodes {

inline constexpr int Success = 200;
inline constexpr int UnknownAccount = 300;
inline constexpr int UnknownOrganization = 308;
inline constexpr int Maintenance = 400;
inline constexpr int ServerError = 500;
inline constexpr int MissingInput = 501;
inline constexpr int TokenLost = 600;
inline constexpr int Archived = 900;

bool isSuccess(int status);

/// What `status` means in the answer to a request. The service answers the upload of a file with
/// codes of its own choice, so there each unknown one is a success.
RequestResult ofRequest(const QString& requestType, int status);

/// What `status` and `data` mean in the answer to a sign-in.
RequestResult ofSignIn(int status, const QMap<QString, QVariant>& data);

} // namespace ResultCodes
