// SPDX-License-Identifier: GPL-3.0-or-later
#include "account/RequestTypes.h"

#include <QSet>

bool RequestTypes::needsNoAccount(const QString& requestType)
{
    static const QSet<QString> types{
        Login, TestProxy, InitAuthorization, CheckAuthorization, UpdateRequest, UsageStats};
    return types.contains(requestType);
}
