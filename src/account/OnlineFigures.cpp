// SPDX-License-Identifier: GPL-3.0-or-later
#include "account/OnlineFigures.h"

#include "account/AnswerFields.h"
#include "storage/Settings.h"

#include <QMetaType>

#include <array>
#include <cmath>

namespace {

template <typename Figures>
struct Figure
{
    const char* name;
    qint64 Figures::*value;
    const SettingKey<qint64>& key;
};

const QString Distance = QStringLiteral("distance");

const std::array<Figure<OnlineTotals>, 6>& totals()
{
    static const std::array<Figure<OnlineTotals>, 6> table{{
        {"keys", &OnlineTotals::keys, SettingsKeys::OnlineTotalKeys},
        {"clicks", &OnlineTotals::clicks, SettingsKeys::OnlineTotalClicks},
        {"download", &OnlineTotals::download, SettingsKeys::OnlineTotalDownload},
        {"upload", &OnlineTotals::upload, SettingsKeys::OnlineTotalUpload},
        {"uptime", &OnlineTotals::uptime, SettingsKeys::OnlineTotalUptime},
        {"scrolls", &OnlineTotals::scrolls, SettingsKeys::OnlineTotalScrolls},
    }};
    return table;
}

const std::array<Figure<OnlineRanks>, 7>& ranks()
{
    static const std::array<Figure<OnlineRanks>, 7> table{{
        {"keys", &OnlineRanks::keys, SettingsKeys::OnlineRankKeys},
        {"clicks", &OnlineRanks::clicks, SettingsKeys::OnlineRankClicks},
        {"download", &OnlineRanks::download, SettingsKeys::OnlineRankDownload},
        {"upload", &OnlineRanks::upload, SettingsKeys::OnlineRankUpload},
        {"uptime", &OnlineRanks::uptime, SettingsKeys::OnlineRankUptime},
        {"scrolls", &OnlineRanks::scrolls, SettingsKeys::OnlineRankScrolls},
        {"distance", &OnlineRanks::distance, SettingsKeys::OnlineRankDistance},
    }};
    return table;
}

template <typename Figures, std::size_t Count>
std::optional<Figures> figuresFrom(const QVariantMap& object,
                                   const std::array<Figure<Figures>, Count>& table)
{
    Figures figures;
    for (const auto& [name, member, key] : table) {
        const auto number = OnlineFigures::wholeNumber(object.value(QLatin1String(name)));
        if (!number) {
            return std::nullopt;
        }
        figures.*member = *number;
    }
    return figures;
}

template <typename Figures, std::size_t Count>
void storeAll(const Figures& figures, const std::array<Figure<Figures>, Count>& table)
{
    for (const auto& [name, member, key] : table) {
        Settings::instance().setValue(key, figures.*member);
    }
}

/// Whether any were stored, which happens to all at once. `Settings` looks an absent key up in the
/// database each time, which who asks for all of them a thousand times a second would feel.
template <typename Figures, std::size_t Count>
bool areStored(const std::array<Figure<Figures>, Count>& table)
{
    return Settings::instance().has(table.front().key.name());
}

template <typename Figures, std::size_t Count>
Figures storedFigures(const std::array<Figure<Figures>, Count>& table)
{
    Figures figures;
    for (const auto& [name, member, key] : table) {
        figures.*member = Settings::instance().value(key);
    }
    return figures;
}

} // namespace

namespace OnlineFigures {

std::optional<qint64> wholeNumber(const QVariant& value)
{
    const bool isText = value.typeId() == QMetaType::QString;
    const auto number = isText ? std::nullopt : AnswerFields::wholeNumber(value);
    return number && *number >= 0 ? number : std::nullopt;
}

std::optional<OnlineTotals> totalsFrom(const QVariant& object)
{
    std::optional<OnlineTotals> result = figuresFrom(object.toMap(), totals());
    const QVariant distance = object.toMap().value(Distance);
    const bool isNumber = distance.typeId() == QMetaType::Double || wholeNumber(distance);
    const double miles = isNumber ? distance.toDouble() : -1;
    if (!result || !std::isfinite(miles) || miles < 0) {
        return std::nullopt;
    }
    result->distanceMiles = miles;
    return result;
}

std::optional<OnlineRanks> ranksFrom(const QVariant& object)
{
    return figuresFrom(object.toMap(), ranks());
}

void store(const OnlineTotals& figures)
{
    storeAll(figures, totals());
    Settings::instance().setValue(SettingsKeys::OnlineTotalDistanceMiles, figures.distanceMiles);
}

void store(const OnlineRanks& figures)
{
    storeAll(figures, ranks());
}

OnlineTotals storedTotals()
{
    if (!areStored(totals())) {
        return {};
    }
    OnlineTotals figures = storedFigures(totals());
    figures.distanceMiles = Settings::instance().value(SettingsKeys::OnlineTotalDistanceMiles);
    return figures;
}

OnlineRanks storedRanks()
{
    return areStored(ranks()) ? storedFigures(ranks()) : OnlineRanks();
}

} // namespace OnlineFigures
