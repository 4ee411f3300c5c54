// SPDX-License-Identifier: GPL-3.0-or-later
#include "profiles/ProfileManager.h"

#include "base/Log.h"
#include "storage/DSqlQuery.h"
#include "storage/Database.h"

namespace {

ProfileManager* s_instance = nullptr;

} // namespace

ProfileManager::ProfileManager(QObject* parent)
    : QObject(parent)
{
    s_instance = this;
}

ProfileManager::~ProfileManager()
{
    s_instance = nullptr;
}

ProfileManager* ProfileManager::instance()
{
    return s_instance;
}

int ProfileManager::getActiveStatsProfileId() const
{
    return m_statsProfileId;
}

QString ProfileManager::getActiveStatsProfileName() const
{
    return m_statsProfileId == DefaultProfileId ? tr("General") : m_statsProfileName;
}

void ProfileManager::setActiveStatsProfile(int id, const QString& name)
{
    Log::info("Activating profile: {} with ID: {}", name, id);
    DSqlQuery query(Database::instance());
    query.exec(QStringLiteral("UPDATE profiles SET active = 0 WHERE active = 1"));
    if (id != DefaultProfileId &&
        query.prepare(QStringLiteral("UPDATE profiles SET active = 1, updated_at = "
                                     "datetime('now', 'localtime') WHERE id = ?"))) {
        query.bindValue(0, id);
        query.exec();
    }
    m_statsProfileId = id;
    m_statsProfileName = name;
    Q_EMIT signalActiveStatsProfileChanged(id);
}

void ProfileManager::activateDefaultProfile()
{
    setActiveStatsProfile(DefaultProfileId, tr("General"));
}

void ProfileManager::refreshProfileFromDatabase()
{
    DSqlQuery query(Database::instance(),
                    QStringLiteral("SELECT id, name FROM profiles WHERE active = 1"), true);
    const bool found = query.next();
    m_statsProfileId = found ? query.value(0).toInt() : DefaultProfileId;
    m_statsProfileName = found ? query.value(1).toString() : QString();
    Q_EMIT signalActiveStatsProfileChanged(m_statsProfileId);
}
