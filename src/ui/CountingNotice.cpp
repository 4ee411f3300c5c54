// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/CountingNotice.h"

#include <QCoreApplication>

namespace {

/// Gives the context of the translations.
struct Text
{
    Q_DECLARE_TR_FUNCTIONS(CountingNotice)
};

QString grantAccess()
{
    return QStringLiteral("sudo usermod -aG input $USER");
}

Notice::Content noDevices()
{
    return {.icon = QStringLiteral("unplugged"),
            .title = Text::tr("No keyboard found"),
            .text = Text::tr("There is no input device that can be read, so no keys are counted. "
                             "Counting begins by itself when one is connected. If one is connected "
                             "already, run this command in a terminal and log in again."),
            .command = grantAccess(),
            .button = {}};
}

Notice::Content noPermission()
{
    return {.icon = QStringLiteral("locked"),
            .title = Text::tr("Your keys are not counted yet"),
            .text =
                Text::tr("You may not read the input devices of this computer. To grant access, "
                         "run this command in a terminal and log in again."),
            .command = grantAccess(),
            .button = {}};
}

Notice::Content off()
{
    return {.icon = QStringLiteral("off"),
            .title = Text::tr("Keyboard counting is off"),
            .text = Text::tr("New keys are not counted. What was counted before is kept."),
            .command = {},
            .button = Text::tr("Switch counting on")};
}

Notice::Content paused()
{
    return {.icon = QStringLiteral("pause"),
            .title = Text::tr("Counting is paused"),
            .text = Text::tr("Keys you press now are not counted."),
            .command = {},
            .button = {}};
}

Notice::Content readOnly()
{
    return {.icon = QStringLiteral("warning"),
            .title = Text::tr("Keys are not counted"),
            .text = Text::tr("The database is read-only. Make it and its directory writable, then "
                             "start Tallyvane again. What was counted before is kept."),
            .command = {},
            .button = {}};
}

} // namespace

std::optional<Notice::Content> CountingNotice::forState(InputState state)
{
    switch (state) {
    case InputState::Reading:
        break;
    case InputState::NoDevices:
        return noDevices();
    case InputState::NoPermission:
        return noPermission();
    case InputState::Off:
        return off();
    case InputState::Paused:
        return paused();
    case InputState::ReadOnly:
        return readOnly();
    }
    return std::nullopt;
}

Notice::Content CountingNotice::unreadable()
{
    return {.icon = QStringLiteral("warning"),
            .title = Text::tr("The figures cannot be read"),
            .text =
                Text::tr("The database did not answer. What was counted is not lost, and this page "
                         "tries again every half minute. The log file, app.log, tells the reason."),
            .command = {},
            .button = {}};
}
