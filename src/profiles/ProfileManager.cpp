// SPDX-License-Identifier: GPL-3.0-or-later
#include "profiles/ProfileManager.h"

#include "base/Log.h"
#include "profiles/ProfileFold.h"
#include "storage/DSqlQuery.h"
#include "storage/Database.h"
#include "storage/Settings.h"

#include <QElapsedTimer>
#include <QSqlDatabase>
#include <QSqlError>

#include <algorithm>
#include <utility>

namespace {

ProfileManager* s_instance = nullptr;

/// One form for one name, however its accents were typed.
QString stored(const QString& name)
{
    return name.normalized(QString::NormalizationForm_C).trimmed();
}

bool isVisible(char32_t character)
{
    return QChar::isPrint(character) && !QChar::isSpace(character);
}

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
    if (Database::instance()->isLent()) {
        m_wanted = Profile{id, name};
        return;
    }
    Log::info("Activating profile: {} with ID: {}", name, id);
    if (id != m_statsProfileId) {
        Q_EMIT signalNeedFlush();
    }
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

void ProfileManager::setActiveFilterProfile(int id, const QString& name)
{
    m_filterProfileName = name;
    Database::instance()->setProfileFilter(id == AllProfiles ? std::nullopt : std::optional(id));
    Q_EMIT signalActiveFilterProfileChanged(id);
}

int ProfileManager::getActiveFilterProfileId() const
{
    const Database* database = Database::instance();
    return database ? database->profileFilter().value_or(AllProfiles) : AllProfiles;
}

QString ProfileManager::getActiveFilterProfileName() const
{
    switch (getActiveFilterProfileId()) {
    case AllProfiles:
        return tr("All profiles");
    case DefaultProfileId:
        return tr("General");
    default:
        return m_filterProfileName;
    }
}

QVariantList ProfileManager::getProfiles() const
{
    static const QStringList keys{QStringLiteral("id"), QStringLiteral("name"),
                                  QStringLiteral("active"), QStringLiteral("created_at"),
                                  QStringLiteral("updated_at")};
    DSqlQuery query(
        Database::instance(),
        QStringLiteral("SELECT id, name, active, created_at, updated_at FROM profiles ORDER BY "
                       "name"),
        true);
    QVariantList profiles;
    while (query.next()) {
        QVariantMap profile;
        for (int column = 0; column < keys.size(); ++column) {
            profile.insert(keys.at(column), query.value(column));
        }
        profiles.append(profile);
    }
    return profiles;
}

QList<Profile> ProfileManager::profiles() const
{
    QList<Profile> profiles;
    for (const QVariant& row : getProfiles()) {
        const QVariantMap profile = row.toMap();
        profiles.append({profile.value(QStringLiteral("id")).toInt(),
                         profile.value(QStringLiteral("name")).toString()});
    }
    return profiles;
}

bool ProfileManager::profileExists(const QString& name) const
{
    DSqlQuery query(Database::instance(),
                    QStringLiteral("SELECT COUNT(*) FROM profiles WHERE name = ?"), false);
    query.bindValue(0, name);
    return query.exec() && query.next() && query.value(0).toInt() > 0;
}

/// The default profile's name is in no row, and would be in every list twice.
bool ProfileManager::isTaken(const QString& name) const
{
    return name == tr("General") || profileExists(name);
}

ProfileManager::NameResult ProfileManager::check(const QString& name) const
{
    const QList<uint> characters = name.toUcs4();
    if (std::none_of(characters.cbegin(), characters.cend(), isVisible)) {
        return NameResult::Empty;
    }
    if (characters.size() > LongestName) {
        return NameResult::TooLong;
    }
    return isTaken(name) ? NameResult::Duplicate : NameResult::Ok;
}

ProfileManager::NameResult ProfileManager::checkName(int id, const QString& name) const
{
    const QString wanted = stored(name);
    return isNameOf(id, wanted) ? NameResult::Ok : check(wanted);
}

bool ProfileManager::isNameOf(int id, const QString& name) const
{
    const QList<Profile> all = profiles();
    return std::any_of(all.cbegin(), all.cend(), [&](const Profile& profile) {
        return profile.id == id && profile.name == name;
    });
}

ProfileManager::NameResult ProfileManager::addProfile(const QString& name)
{
    const QString wanted = stored(name);
    const NameResult result = check(wanted);
    if (result == NameResult::Duplicate) {
        Log::warn("Tried to create a profile with a duplicate name: {}", wanted);
    }
    if (result != NameResult::Ok) {
        return result;
    }
    DSqlQuery query(Database::instance(),
                    QStringLiteral("INSERT INTO profiles (name, created_at, updated_at) VALUES (?, "
                                   "datetime('now', 'localtime'), datetime('now', 'localtime'))"),
                    false);
    query.bindValue(0, wanted);
    if (!query.exec()) {
        return NameResult::Failed;
    }
    noteListChanged();
    return NameResult::Ok;
}

ProfileManager::NameResult ProfileManager::editProfileName(int id, const QString& name)
{
    const QString wanted = stored(name);
    const bool keepsIt = isNameOf(id, wanted);
    const NameResult result = keepsIt ? NameResult::Ok : check(wanted);
    if (result == NameResult::Duplicate) {
        Log::warn("Tried to rename a profile with a duplicate name: {}", wanted);
    }
    if (keepsIt || result != NameResult::Ok) {
        return result;
    }
    DSqlQuery query(Database::instance(),
                    QStringLiteral("UPDATE profiles SET name = ?, updated_at = datetime('now', "
                                   "'localtime') WHERE id = ?"),
                    false);
    query.bindValue(0, wanted);
    query.bindValue(1, id);
    if (!query.exec() || query.numRowsAffected() == 0) {
        return NameResult::Failed;
    }
    if (id == m_statsProfileId) {
        m_statsProfileName = wanted;
    }
    if (id == getActiveFilterProfileId()) {
        m_filterProfileName = wanted;
    }
    noteListChanged();
    return NameResult::Ok;
}

bool ProfileManager::deleteProfile(int id)
{
    QElapsedTimer timer;
    timer.start();
    Q_EMIT signalNeedFlush();
    if (id == DefaultProfileId ||
        ProfileFold::deleteProfile(Database::instance()->connection(), id,
                                   [](int) { return true; }) != ProfileFold::Result::Deleted) {
        Log::error("Unable to delete the profile with ID: {}", id);
        return false;
    }
    noteDeleted(id);
    Log::info("Deletion of profile took {}ms", timer.elapsed());
    return true;
}

void ProfileManager::noteDeleted(int id)
{
    if (id == m_statsProfileId) {
        // Not by activating another one: what is gathered and not yet written would be filed under
        // the profile that is gone.
        Log::info("Activating profile: {} with ID: {}", tr("General"), DefaultProfileId);
        m_statsProfileId = DefaultProfileId;
        m_statsProfileName.clear();
        Q_EMIT signalActiveStatsProfileChanged(m_statsProfileId);
    }
    if (id == getActiveFilterProfileId()) {
        setActiveFilterProfile(DefaultProfileId, tr("General"));
    }
    noteListChanged();
}

void ProfileManager::databaseTakenBack()
{
    if (const std::optional<Profile> wanted = std::exchange(m_wanted, std::nullopt)) {
        setActiveStatsProfile(wanted->id, wanted->name);
    }
}

void ProfileManager::noteListChanged()
{
    Settings::instance().setValue(SettingsKeys::ProfilesHaveChanged, true);
    Q_EMIT signalProfilesChanged();
}

bool ProfileManager::shouldUploadProfiles() const
{
    return Settings::instance().value(SettingsKeys::ProfilesHaveChanged);
}

void ProfileManager::successFullyUploadedProfiles()
{
    Settings::instance().setValue(SettingsKeys::ProfilesHaveChanged, false);
}
