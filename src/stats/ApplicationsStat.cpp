// SPDX-License-Identifier: GPL-3.0-or-later
#include "stats/ApplicationsStat.h"

#include "storage/Database.h"
#include "system/AbstractSystem.h"

ApplicationsStat::ApplicationsStat(AbstractSystem* system, QObject* parent)
    : Stat(system, parent)
    , m_selectKnown(QStringLiteral(R"(SELECT 1 FROM applications WHERE "path" = ? LIMIT 1)"))
    , m_insert(QStringLiteral(R"(INSERT OR IGNORE INTO applications ("path", "name", "icon", )"
                              R"("version") VALUES(?, ?, '', ''))"))
{
    connect(Database::instance(), &Database::cleaned, this, [this] { m_handled.clear(); });
}

int ApplicationsStat::getUpdateMilliSecondMod() const
{
    return 60'000;
}

int ApplicationsStat::getUpdateMilliSecondModUI() const
{
    return 5'000;
}

int ApplicationsStat::getFrequentUpdateMilliSecond() const
{
    return 5'000;
}

int ApplicationsStat::getFrequentUpdateMilliSecondUI() const
{
    return 2'000;
}

int ApplicationsStat::getInfrequentUpdateMilliSecond() const
{
    return 60'000;
}

void ApplicationsStat::doUpdate(QDateTime, bool)
{
    for (const QString& path : system().getRunningDesktopApplications()) {
        if (!path.isEmpty() && !m_handled.contains(path) &&
            !system().shouldExcludeApplicationForStats(path)) {
            addUnlessKnown(path);
            m_handled.insert(path);
        }
    }
}

void ApplicationsStat::addUnlessKnown(const QString& path)
{
    const bool isKnown = m_selectKnown.findsRow({path});
    const QString name = system().getApplicationName(path);
    if (!isKnown) {
        m_insert.run({path, name});
    }
}
