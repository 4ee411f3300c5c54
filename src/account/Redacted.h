// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

/// Whether a field of this name, of what goes to or comes from the account service, is kept out of
/// the log: whoever knows its value can speak for the account, be handed it, or fetch a backup. Any
/// thread.
bool isSecretField(const QString& name);

/// What may be logged of a JSON text that goes to or comes from the account service: the values of
/// secret fields become "...", and what follows the first 16,384 characters is left out. The text
/// need not be valid JSON, nor whole. Any thread.
QString redacted(const QString& json);
