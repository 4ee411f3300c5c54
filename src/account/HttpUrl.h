// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QUrl>

/// The address in `text` where it is a http or https address with a host, else an empty one. Any
/// thread.
QUrl httpUrl(const QString& text);
