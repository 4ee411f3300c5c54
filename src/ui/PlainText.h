// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

/// Words from outside, prepared for widgets that would cut them or take them for markup. Any
/// thread.
namespace PlainText {

/// Lets words too long for a narrow column wrap: after their signs, and where they have none.
QString breakable(const QString& text);

/// The text as a tool tip that shows it as it stands, in lines of a bearable length.
QString toolTip(const QString& text);

} // namespace PlainText
