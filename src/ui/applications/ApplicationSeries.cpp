// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/applications/ApplicationSeries.h"

#include "ui/Ramp.h"

#include <QHash>
#include <QSet>

#include <algorithm>

namespace {

constexpr qsizetype WithoutSelection = 5;

} // namespace

ApplicationSeries::Choice ApplicationSeries::choose(const QList<ApplicationTotals>& applications,
                                                    const QStringList& selected,
                                                    ApplicationMeasure measure,
                                                    const Choice& before)
{
    const QSet<QString> wanted(selected.begin(), selected.end());
    QList<const ApplicationTotals*> ranked;
    for (const ApplicationTotals& application : applications) {
        const bool isCandidate = wanted.isEmpty() ? valueOf(application, measure) > 0
                                                  : wanted.contains(application.path);
        if (isCandidate) {
            ranked.append(&application);
        }
    }
    std::stable_sort(ranked.begin(), ranked.end(),
                     [measure](const ApplicationTotals* one, const ApplicationTotals* other) {
                         return valueOf(*one, measure) > valueOf(*other, measure);
                     });
    const qsizetype most = wanted.isEmpty() ? WithoutSelection : Ramp::Categories;
    Choice choice;
    for (qsizetype rank = 0; rank < ranked.size(); ++rank) {
        if (rank < most) {
            choice.own.append(ranked.at(rank)->path);
        } else if (!wanted.isEmpty()) {
            choice.other.append(ranked.at(rank)->path);
        }
    }
    const auto place = [&before](const QString& path) {
        const qsizetype index = before.own.indexOf(path);
        return index < 0 ? before.own.size() : index;
    };
    std::stable_sort(
        choice.own.begin(), choice.own.end(),
        [&place](const QString& one, const QString& other) { return place(one) < place(other); });
    return choice;
}

QList<TimeChart::DaySeries>
ApplicationSeries::series(const Choice& choice, const QList<ApplicationDay>& days,
                          const QList<QDate>& counted, ApplicationMeasure measure,
                          const std::function<QString(const QString& path)>& name,
                          const QString& otherName)
{
    QList<TimeChart::DaySeries> all;
    QHash<QString, qsizetype> seriesOf;
    const bool isAlone = choice.own.size() == 1 && choice.other.isEmpty();
    for (const QString& path : choice.own) {
        const auto colour = isAlone ? TimeChart::Series::Accent : static_cast<int>(all.size());
        seriesOf.insert(path, all.size());
        all.append({.name = name(path), .colour = colour, .values = {}});
    }
    for (const QString& path : choice.other) {
        seriesOf.insert(path, choice.own.size());
    }
    if (!choice.other.isEmpty()) {
        all.append({.name = otherName, .colour = Ramp::Categories, .values = {}});
    }
    for (TimeChart::DaySeries& series : all) {
        for (const QDate& day : counted) {
            series.values.insert(day, 0);
        }
    }
    for (const ApplicationDay& day : days) {
        const auto series = seriesOf.constFind(day.path);
        if (series != seriesOf.constEnd()) {
            all[*series].values[day.day] += valueOf(day, measure);
        }
    }
    return all;
}
