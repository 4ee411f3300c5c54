// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

/// The page where a user agrees that a computer belongs to an account.
namespace AuthorizationPage {

/// Asks for the account, new or one of `userNames`; the form goes to the page's own address.
QByteArray question(const QString& computer, const QStringList& userNames);
QByteArray thanks();
QByteArray unknownClient();

} // namespace AuthorizationPage
