// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/network/NetworkNotice.h"

#include <QCoreApplication>

namespace {

/// Gives the context of the translations.
struct Text
{
    Q_DECLARE_TR_FUNCTIONS(NetworkNotice)
};

/// A paragraph each, without those that are empty.
QString paragraphs(const QStringList& parts)
{
    QStringList shown = parts;
    shown.removeAll(QString());
    return shown.join(QLatin1Char(' '));
}

Notice::Content pcapMissing(const CaptureState& state)
{
    const QString title = Text::tr(
        "LibPcap not found, which is needed for network statistics.<br>Please install package.");
    // The first line says what is missing, the second what to do.
    const QStringList lines = title.split(QStringLiteral("<br>"));
    return {.icon = QStringLiteral("unplugged"),
            .title = lines.constFirst(),
            .text = paragraphs({lines.constLast(), Text::tr("Until then the totals of each "
                                                            "interface are counted, and no "
                                                            "applications, countries or ports.")}),
            .command = state.command,
            .button = {}};
}

Notice::Content counters(const CaptureState& state)
{
    return {.icon = QStringLiteral("locked"),
            .title = Text::tr("Only totals are counted"),
            .text = paragraphs(
                {state.reason,
                 Text::tr("The totals of each interface are counted all the same, but no "
                          "applications, countries or ports."),
                 state.command.isEmpty()
                     ? QString()
                     : Text::tr("To count those too, run this command in a terminal and start "
                                "Tallyvane again.")}),
            .command = state.command,
            .button = {}};
}

} // namespace

std::optional<Notice::Content> NetworkNotice::forCapture(const CaptureState& state)
{
    if (state.backEnd != CaptureState::BackEnd::Counters) {
        return std::nullopt;
    }
    return state.pcapMissing ? pcapMissing(state) : counters(state);
}

Notice::Content NetworkNotice::off()
{
    return {.icon = QStringLiteral("off"),
            .title = Text::tr("Network counting is off"),
            .text = Text::tr("New traffic is not counted. What was counted before is kept."),
            .command = {},
            .button = {}};
}

Notice::Content NetworkNotice::paused()
{
    return {.icon = QStringLiteral("pause"),
            .title = Text::tr("Counting is paused"),
            .text = Text::tr("What crosses the network now is not counted."),
            .command = {},
            .button = {}};
}

Notice::Content NetworkNotice::readOnly()
{
    return {.icon = QStringLiteral("warning"),
            .title = Text::tr("Traffic is not counted"),
            .text = Text::tr("The database is read-only. Make it and its directory writable, then "
                             "start Tallyvane again. What was counted before is kept."),
            .command = {},
            .button = {}};
}
