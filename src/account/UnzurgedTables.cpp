// SPDX-License-Identifier: GPL-3.0-or-later
#include "account/UnzurgedTables.h"

#include "base/Log.h"

#include <QVariant>

#include <algorithm>
#include <cmath>

namespace {

const QString GenerationName = QStringLiteral("generation");
const QString LineageName = QStringLiteral("lineage");
const QString SettledName = QStringLiteral("settled");

/// The count nearest to a stored value of any type; nothing where it is no number. SQLite keeps
/// what does not fit 64 bits as a real number, and in a text column as that number's text.
std::optional<quint64> nearestCount(const QVariant& stored)
{
    bool isNumber = false;
    if (const qint64 whole = stored.toString().toLongLong(&isNumber); isNumber) {
        return static_cast<quint64>(std::max<qint64>(whole, 0));
    }
    const double real = stored.toDouble(&isNumber);
    if (!isNumber || std::isnan(real)) {
        return std::nullopt;
    }
    return real < static_cast<double>(CounterLimit) ? static_cast<quint64>(std::max(real, 0.0))
                                                    : CounterLimit;
}

/// Converts a stored value of the counter, in the tables' unit, into the counter's own.
quint64 countFrom(const QVariant& stored, const UnzurgedCounter& counter)
{
    const quint64 count = nearestCount(stored).value_or(0);
    const quint64 used = std::min(count, CounterLimit / counter.perTableUnit);
    if (QString::number(used) != stored.toString()) {
        Log::warn("The unzurged {} in the database read \"{}\", which is no count; using {}",
                  QString(counter.name), stored.toString(), used);
    }
    return used * counter.perTableUnit;
}

} // namespace

UnzurgedTables::UnzurgedTables(Database* database)
    : m_selectTotal(database,
                    QStringLiteral(R"(SELECT "value" FROM unzurged_stats WHERE "name"=?)"), false)
    , m_selectApplications(
          database,
          QStringLiteral(R"(SELECT "path", "keys", "clicks", "download", "upload", "uptime", )"
                         R"("scrolls", "distance_inches" FROM pending_applications_stats)"),
          false)
    , m_replaceTotal(
          database,
          QStringLiteral(R"(REPLACE INTO unzurged_stats ("value", "name") VALUES (?, ?))"), false)
    , m_replaceApplication(
          database,
          QStringLiteral(R"(REPLACE INTO pending_applications_stats ("path", "keys", "clicks", )"
                         R"("download", "upload", "uptime", "scrolls", "distance_inches") )"
                         R"(VALUES (?, ?, ?, ?, ?, ?, ?, ?))"),
          false)
    , m_deleteApplications(database, QStringLiteral("DELETE FROM pending_applications_stats"),
                           false)
{
}

UnzurgedState UnzurgedTables::load()
{
    return {generation().value_or(0), loadTotals(), loadApplications(), loadText(LineageName),
            nearestCount(loadText(SettledName)).value_or(0)};
}

QString UnzurgedTables::loadText(const QString& name)
{
    m_selectTotal.bindValue(0, name);
    const bool found = m_selectTotal.exec() && m_selectTotal.next();
    QString text = found ? m_selectTotal.value(0).toString() : QString();
    m_selectTotal.finish();
    return text;
}

std::optional<quint64> UnzurgedTables::generation()
{
    m_selectTotal.bindValue(0, GenerationName);
    if (!m_selectTotal.exec() || !m_selectTotal.next()) {
        return std::nullopt;
    }
    bool isNumber = false;
    const quint64 generation = m_selectTotal.value(0).toString().toULongLong(&isNumber);
    m_selectTotal.finish();
    return isNumber && generation < CounterLimit ? std::optional(generation) : std::nullopt;
}

UnzurgedCounts UnzurgedTables::loadTotals()
{
    UnzurgedCounts counts;
    for (const UnzurgedCounter& counter : UnzurgedCounters) {
        m_selectTotal.bindValue(0, QString(counter.name));
        if (m_selectTotal.exec() && m_selectTotal.next()) {
            counts.*counter.value = countFrom(m_selectTotal.value(0), counter);
        }
        m_selectTotal.finish();
    }
    return counts;
}

QHash<QString, UnzurgedCounts> UnzurgedTables::loadApplications()
{
    QHash<QString, UnzurgedCounts> applications;
    m_selectApplications.exec();
    while (m_selectApplications.next()) {
        UnzurgedCounts& counts = applications[m_selectApplications.value(0).toString()];
        int column = 1;
        for (const UnzurgedCounter& counter : UnzurgedCounters) {
            counts.*counter.value = countFrom(m_selectApplications.value(column++), counter);
        }
    }
    m_selectApplications.finish();
    return applications;
}

bool UnzurgedTables::writeAll(const UnzurgedState& state)
{
    bool ok = m_deleteApplications.exec();
    for (auto it = state.applications.cbegin(); it != state.applications.cend(); ++it) {
        ok = ok && writeApplication(it.key(), it.value());
    }
    return ok && writeTotals(state);
}

bool UnzurgedTables::writeChanges(const UnzurgedState& state, const QSet<QString>& changed)
{
    const bool ok = std::ranges::all_of(changed, [&](const QString& path) {
        return writeApplication(path, state.applications.value(path));
    });
    return ok && writeTotals(state);
}

bool UnzurgedTables::writeTotals(const UnzurgedState& state)
{
    const bool ok = std::ranges::all_of(UnzurgedCounters, [&](const UnzurgedCounter& counter) {
        return writeValue(QString(counter.name),
                          QString::number(state.totals.*counter.value / counter.perTableUnit));
    });
    // Last: a generation that is there vouches for all that was written with it.
    return ok && writeValue(LineageName, state.lineage) &&
           writeValue(SettledName, QString::number(state.settled)) &&
           writeValue(GenerationName, QString::number(state.generation));
}

bool UnzurgedTables::writeValue(const QString& name, const QString& value)
{
    m_replaceTotal.bindValue(0, value);
    m_replaceTotal.bindValue(1, name);
    return m_replaceTotal.exec();
}

bool UnzurgedTables::writeApplication(const QString& path, const UnzurgedCounts& counts)
{
    m_replaceApplication.bindValue(0, path);
    int column = 1;
    for (const UnzurgedCounter& counter : UnzurgedCounters) {
        const quint64 value = counts.*counter.value / counter.perTableUnit;
        m_replaceApplication.bindValue(column++, static_cast<qint64>(value));
    }
    return m_replaceApplication.exec();
}
