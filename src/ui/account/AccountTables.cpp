// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/account/AccountTables.h"

#include "base/Format.h"
#include "storage/Settings.h"

#include <QCoreApplication>

#include <algorithm>
#include <limits>

namespace {

/// Gives the context of the translations.
struct Text
{
    Q_DECLARE_TR_FUNCTIONS(AccountTables)
};

constexpr double InchesPerMile = 63'360;
constexpr quint64 MillisecondsPerSecond = 1000;

FiguresModel::Column figureColumn(const QString& header)
{
    return {.header = header, .text = nullptr};
}

QString countText(quint64 number)
{
    constexpr auto most = static_cast<quint64>(std::numeric_limits<qint64>::max());
    return Format::count(static_cast<qint64>(std::min(number, most)));
}

QString countText(qint64 number)
{
    return Format::count(number);
}

QString lengthText(double inches)
{
    const QString system = Settings::instance().value(SettingsKeys::MouseDistanceSystem);
    return Format::length(inches, Format::lengths(system));
}

/// From what the service says, which may be anything.
QString mebibytesText(qint64 mebibytes)
{
    constexpr int bitsOfMiB = 20;
    constexpr qint64 most = std::numeric_limits<qint64>::max() >> bitsOfMiB;
    return Format::bytes(static_cast<quint64>(std::clamp<qint64>(mebibytes, 0, most)) << bitsOfMiB);
}

FiguresModel::Row row(const QString& figure, const QString& unzurged, const QString& total,
                      qint64 rank)
{
    return {figure, unzurged, total, rank > 0 ? Format::count(rank) : QString()};
}

QString outcomeText(const ZurgeRecord& record)
{
    switch (record.outcome) {
    case ZurgeRecord::Outcome::Sent:
        return Text::tr("Sent");
    case ZurgeRecord::Outcome::Failed:
        return record.message.isEmpty() ? Text::tr("Failed")
                                        : Text::tr("Failed: %1").arg(record.message);
    case ZurgeRecord::Outcome::Unanswered:
        break;
    }
    return Text::tr("Not answered. The next zurge finds out.");
}

} // namespace

QList<FiguresModel::Column> AccountTables::countsColumns()
{
    return {FiguresModel::textColumn(Text::tr("Figure")), figureColumn(Text::tr("Not sent yet")),
            figureColumn(Text::tr("At your account")), figureColumn(Text::tr("Rank"))};
}

QList<FiguresModel::Row> AccountTables::counts(const UnzurgedCounts& unzurged,
                                               const OnlineTotals& totals, const OnlineRanks& ranks)
{
    const auto uptime =
        static_cast<qint64>(std::min(unzurged.uptime, CounterLimit) / MillisecondsPerSecond);
    return {
        row(Text::tr("Keys"), countText(unzurged.keys), countText(totals.keys), ranks.keys),
        row(Text::tr("Clicks"), countText(unzurged.clicks), countText(totals.clicks), ranks.clicks),
        row(Text::tr("Scroll steps"), countText(unzurged.scrolls), countText(totals.scrolls),
            ranks.scrolls),
        row(Text::tr("Travel"), lengthText(static_cast<double>(unzurged.distanceInches)),
            lengthText(totals.distanceMiles * InchesPerMile), ranks.distance),
        row(Text::tr("Downloaded"), Format::bytes(unzurged.download),
            mebibytesText(totals.download), ranks.download),
        row(Text::tr("Uploaded"), Format::bytes(unzurged.upload), mebibytesText(totals.upload),
            ranks.upload),
        row(Text::tr("Uptime"), Format::duration(uptime), Format::duration(totals.uptime),
            ranks.uptime)};
}

QList<FiguresModel::Column> AccountTables::zurgesColumns()
{
    return {
        FiguresModel::momentColumn(Text::tr("Time")), FiguresModel::textColumn(Text::tr("Begun")),
        FiguresModel::textColumn(Text::tr("Outcome")), FiguresModel::countColumn(Text::tr("Keys")),
        FiguresModel::countColumn(Text::tr("Clicks"))};
}

QList<FiguresModel::Row> AccountTables::zurges(const QList<ZurgeRecord>& records)
{
    QList<FiguresModel::Row> rows;
    for (const ZurgeRecord& record : records) {
        rows.append({record.time,
                     record.origin == ZurgeRecord::Origin::Automatic ? Text::tr("By itself")
                                                                     : Text::tr("By hand"),
                     outcomeText(record), record.keys, record.clicks});
    }
    return rows;
}

QList<FiguresModel::Column> AccountTables::backupsColumns()
{
    // A size that the service does not say stays empty.
    const auto size = [](const QVariant& raw) {
        return raw.toLongLong() > 0 ? Format::bytes(raw.toULongLong()) : QString();
    };
    return {FiguresModel::timeColumn(Text::tr("Made")), {.header = Text::tr("Size"), .text = size}};
}

QList<FiguresModel::Row> AccountTables::backups(const QList<OnlineBackup>& backups)
{
    QList<FiguresModel::Row> rows;
    for (const OnlineBackup& backup : backups) {
        // One without a date is known by its name alone.
        const QString made =
            backup.createdAt.isValid() ? Format::moment(backup.createdAt) : backup.fileName;
        rows.append({made, backup.bytes});
    }
    return rows;
}
