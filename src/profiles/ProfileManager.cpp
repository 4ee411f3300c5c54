// SPDX-License-Identifier: GPL-3.0-or-later
#include "profiles/ProfileManager.h"

#include "base/Log.h"
#include "storage/DSqlQuery.h"
#include "storage/Database.h"

#include <QSqlDatabase>
#include <QSqlError>

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
    // One transaction, so that a kill in between does not leave no profile active; where the caller
    // has one open, this fails and the statements are part of that one.
    QSqlDatabase connection = Database::instance()->connection();
    const bool began = connection.transaction();
    const bool marked = markActive(id);
    if (began && !connection.commit()) {
        Log::error("Unable to store the active profile: {}", connection.lastError().text());
        connection.rollback();
    }
    if (!marked) {
        Log::warn("There is no profile with ID: {}, counting under the default profile", id);
    }
    m_statsProfileId = marked ? id : DefaultProfileId;
    m_statsProfileName = marked ? name : QString();
    Q_EMIT signalActiveStatsProfileChanged(m_statsProfileId);
}

bool ProfileManager::markActive(int id)
{
    DSqlQuery query(Database::instance());
    query.exec(QStringLiteral("UPDATE profiles SET active = 0 WHERE active = 1"));
    if (id == DefaultProfileId) {
        return true;
    }
    query.prepare(QStringLiteral("UPDATE profiles SET active = 1, updated_at = "
                                 "datetime('now', 'localtime') WHERE id = ?"));
    query.bindValue(0, id);
    return query.exec() && query.numRowsAffected() > 0;
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
