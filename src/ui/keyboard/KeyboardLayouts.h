// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/keyboard/KeyboardLayout.h"

#include <QLocale>

/// The keyboards that can be drawn: two forms of a full-size board with the letters of six
/// arrangements each. The identifiers, such as "iso-qwertz", are the values of the setting
/// `keyboard_layout`. Any thread.
namespace KeyboardLayouts {

struct Choice
{
    QString id;
    QString name; ///< To show.
};

/// All of them, in the order in which to offer them.
QList<Choice> choices();

/// The keyboard most likely in use where people speak as `locale` says.
QString forLocale(const QLocale& locale);

/// The value of the setting where it names a keyboard; else one chosen by the input method's
/// locale, or, where that tells nothing, the system's. Thread: main.
QString selected();

/// The keys of a keyboard, from the upper left to the lower right of each of its blocks; `id` is
/// one of the choices.
KeyboardLayout make(const QString& id);

} // namespace KeyboardLayouts
