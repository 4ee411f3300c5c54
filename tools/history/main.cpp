// SPDX-License-Identifier: GPL-3.0-or-later
// Writes a database of synthetic history; `tools/make-history --help` says how to call it.
#include "history/SyntheticHistory.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDir>

#include <cstdio>
#include <cstdlib>
#include <optional>

namespace {

const QString YearsOption = QStringLiteral("years");
const QString DaysOption = QStringLiteral("days");
const QString SeedOption = QStringLiteral("seed");
const QString UntilOption = QStringLiteral("until");

void describe(QCommandLineParser& parser)
{
    parser.setApplicationDescription(QStringLiteral(
        "Writes DIRECTORY/tallyvane.db, a database of plausible use, the same for the same seed "
        "and last day."));
    parser.addHelpOption();
    parser.addOptions({
        {YearsOption, QStringLiteral("How many years of history (10)."), QStringLiteral("N"),
         QStringLiteral("10")},
        {DaysOption, QStringLiteral("How many days, in place of years."), QStringLiteral("N")},
        {SeedOption, QStringLiteral("Another number makes another history (1)."),
         QStringLiteral("N"), QStringLiteral("1")},
        {UntilOption, QStringLiteral("The last day, a whole one unless it is today (today)."),
         QStringLiteral("yyyy-MM-dd")},
    });
    parser.addPositionalArgument(QStringLiteral("DIRECTORY"),
                                 QStringLiteral("Where the database is written."));
}

/// The option's number; null where it is none, or below `least`.
std::optional<qint64> number(const QCommandLineParser& parser, const QString& option, qint64 least)
{
    bool isNumber = false;
    const qint64 value = parser.value(option).toLongLong(&isNumber);
    return isNumber && value >= least ? std::optional(value) : std::nullopt;
}

/// The end of the last day, or this moment where that is today.
std::optional<QDateTime> endOf(const QCommandLineParser& parser)
{
    const QDateTime now = QDateTime::currentDateTime();
    if (!parser.isSet(UntilOption)) {
        return now;
    }
    const QDate day = QDate::fromString(parser.value(UntilOption), Qt::ISODate);
    if (!day.isValid()) {
        return std::nullopt;
    }
    return day == now.date() ? now : QDateTime(day, QTime(23, 59, 59));
}

std::optional<SyntheticHistory::Plan> planFrom(const QCommandLineParser& parser)
{
    const std::optional<QDateTime> end = endOf(parser);
    const auto years = number(parser, YearsOption, 1);
    const auto days = parser.isSet(DaysOption) ? number(parser, DaysOption, 1) : 0;
    const auto seed = number(parser, SeedOption, 0);
    if (!end || !years || !days || !seed) {
        return std::nullopt;
    }
    const QDate last = end->date();
    const QDate first = parser.isSet(DaysOption)
                            ? last.addDays(1 - *days)
                            : last.addYears(static_cast<int>(-*years)).addDays(1);
    return SyntheticHistory::Plan{first, *end, static_cast<quint64>(*seed)};
}

/// Says how far it is, once for each tenth.
void showProgress(double share)
{
    static int shown = -1;
    const int tenths = static_cast<int>(share * 10);
    if (tenths > shown) {
        shown = tenths;
        std::fprintf(stderr, "make-history: %d %%\n", tenths * 10);
    }
}

int run(const QString& directory, const SyntheticHistory::Plan& plan)
{
    if (!QDir().mkpath(directory)) {
        std::fprintf(stderr, "make-history: cannot make %s\n", qPrintable(directory));
        return EXIT_FAILURE;
    }
    try {
        SyntheticHistory::write(directory, plan, showProgress);
    } catch (const HistoryError& error) {
        std::fprintf(stderr, "make-history: %s\n", error.what());
        return EXIT_FAILURE;
    }
    return EXIT_SUCCESS;
}

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    QCommandLineParser parser;
    describe(parser);
    parser.process(application);
    const std::optional<SyntheticHistory::Plan> plan = planFrom(parser);
    if (!plan || parser.positionalArguments().size() != 1) {
        std::fputs(qPrintable(parser.helpText()), stderr);
        return EXIT_FAILURE;
    }
    return run(parser.positionalArguments().first(), *plan);
}
