// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

/// What may be logged of a JSON text that goes to or comes from the account service: the values of
/// "client_token", "client_uid", "token", "passwordhash" and "password_hash" become "...", and what
/// follows the first 16,384 characters is left out. The text need not be valid JSON, nor whole.
QString redacted(const QString& json);
