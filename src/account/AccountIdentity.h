// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

/// Who is signed in, and on which of the account's computers. Plain value; kept encrypted in the
/// ".tvw" file and nowhere else, apart from the email address and the number, which the settings
/// hold for the views.
struct AccountIdentity
{
    qint64 userId = 0; ///< 0: no account is signed in.
    qint64 computerId = 0;
    QString email;
    QString userName;
    QString computer;     ///< The computer's name at the service.
    QString passwordHash; ///< As the service handed it out; never logged.

    bool isSignedIn() const { return userId > 0 && computerId > 0 && !passwordHash.isEmpty(); }

    /// Whether both are the same computer of the same account, whatever else of them differs.
    bool isSameComputer(const AccountIdentity& other) const
    {
        return userId == other.userId && computerId == other.computerId;
    }

    friend bool operator==(const AccountIdentity&, const AccountIdentity&) = default;
};
