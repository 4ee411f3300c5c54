// SPDX-License-Identifier: GPL-3.0-or-later
#include "storage/Settings.h"

#include "base/Log.h"
#include "storage/DSqlQuery.h"
#include "storage/Database.h"
#include "storage/DefaultSettings.h"

#include <QSqlError>
#include <QThread>

#include <utility>

namespace {

bool isNull(const QVariant& value)
{
    switch (value.typeId()) {
    case QMetaType::QString:
        return value.toString().isNull();
    case QMetaType::QByteArray:
        return value.toByteArray().isNull();
    case QMetaType::QDateTime:
        return value.toDateTime().isNull();
    default:
        return value.isNull();
    }
}

/// The column is NOT NULL, and an empty text or time would be bound as NULL.
QVariant storable(const QVariant& value)
{
    return isNull(value) ? QVariant(QStringLiteral("")) : value;
}

/// At the level trace alone: settings are read often.
void logAccess(const char* operation, const QString& key)
{
    if (Log::isEnabled(Log::Level::Trace)) {
        Log::debug("Settings::{}({})", operation, key);
    }
}

} // namespace

Settings::Settings() = default;
Settings::~Settings() = default;

Settings& Settings::instance()
{
    static Settings settings;
    return settings;
}

void Settings::init(Database* database)
{
    m_database = database;
    m_databaseThread = database->thread();
    QObject::connect(database, &Database::aboutToClose, database, [this] { close(); });
    QObject::connect(database, &Database::takenBack, database, [this] { storeHeld(); });
    m_select = std::make_unique<DSqlQuery>(
        database, QStringLiteral("SELECT value FROM settings WHERE \"name\"=?"), false);
    m_replace = std::make_unique<DSqlQuery>(
        database, QStringLiteral("REPLACE INTO settings (\"value\", \"name\") VALUES (?, ?)"),
        false);
    m_insertDefault = std::make_unique<DSqlQuery>(
        database,
        QStringLiteral("INSERT OR IGNORE INTO settings (\"name\", \"value\") VALUES(?, ?)"), false);

    QHash<QString, QVariant> rows;
    DSqlQuery query(database, QStringLiteral("SELECT name, value FROM settings"), true);
    while (query.next()) {
        rows.insert(query.value(0).toString(), query.value(1));
    }
    const QWriteLocker locker(&m_lock);
    m_cache = std::move(rows);
}

void Settings::close()
{
    m_select.reset();
    m_replace.reset();
    m_insertDefault.reset();
    m_database = nullptr;
    m_databaseThread = nullptr;
}

void Settings::initializeDefaultSettings()
{
    static const DefaultSettings::Table defaults = DefaultSettings::table();
    if (m_database == nullptr) {
        return;
    }
    // One transaction: a new database would otherwise wait for the disk some sixty times.
    QSqlDatabase connection = m_database->connection();
    connection.transaction();
    for (const auto& [key, value] : defaults) {
        setDefault(key, value);
    }
    for (const auto& [key, value] : DefaultSettings::ofThisMoment(QDateTime::currentDateTime())) {
        setDefault(key, value);
    }
    if (!connection.commit()) {
        Log::error("Unable to store the default settings: {}", connection.lastError().text());
        connection.rollback();
    }
}

bool Settings::setDefault(const QString& key, const QVariant& value)
{
    logAccess("setDefault", key);
    if (!m_insertDefault) {
        return false;
    }
    m_insertDefault->bindValue(0, key);
    m_insertDefault->bindValue(1, storable(value));
    const bool ok = m_insertDefault->exec();
    const bool added = ok && m_insertDefault->numRowsAffected() > 0;
    m_insertDefault->finish();
    if (added) {
        const QWriteLocker locker(&m_lock);
        m_cache.insert(key, value);
    }
    return ok;
}

QVariant Settings::get(const QString& key, const QVariant& defaultValue) const
{
    logAccess("get", key);
    if (const std::optional<QVariant> value = cached(key)) {
        return *value;
    }
    const QVariant stored = readRow(key);
    return stored.isValid() ? stored : defaultValue;
}

bool Settings::has(const QString& key) const
{
    logAccess("has", key);
    return cached(key) || readRow(key).isValid();
}

bool Settings::set(const QString& key, const QVariant& value)
{
    logAccess("set", key);
    {
        const QWriteLocker locker(&m_lock);
        m_cache.insert(key, value);
    }
    if (!m_replace) {
        return false;
    }
    if (m_database->isLent()) {
        m_held.insert(key);
        return true;
    }
    m_replace->bindValue(0, storable(value));
    m_replace->bindValue(1, key);
    const bool ok = m_replace->exec();
    m_replace->finish();
    return ok;
}

bool Settings::set(const QString& key, const long& value)
{
    return set(key, QVariant(QString::number(value)));
}

bool Settings::setDouble(const QString& key, const double& value)
{
    return set(key, QVariant(value));
}

void Settings::storeHeld()
{
    for (const QString& key : std::exchange(m_held, {})) {
        const std::optional<QVariant> value = cached(key);
        if (value) {
            set(key, *value);
        } else {
            del(key);
        }
    }
}

void Settings::del(const QString& key)
{
    logAccess("del", key);
    {
        const QWriteLocker locker(&m_lock);
        m_cache.remove(key);
    }
    if (m_database == nullptr) {
        return;
    }
    if (m_database->isLent()) {
        m_held.insert(key);
        return;
    }
    DSqlQuery query(m_database, QStringLiteral("DELETE FROM settings WHERE \"name\"=?"), false);
    query.bindValue(0, key);
    query.exec();
}

std::optional<QVariant> Settings::cached(const QString& key) const
{
    const QReadLocker locker(&m_lock);
    const auto value = m_cache.constFind(key);
    return value != m_cache.constEnd() ? std::optional(*value) : std::nullopt;
}

QVariant Settings::readRow(const QString& key) const
{
    // Off the main thread the cache alone answers; it was filled with every row there is.
    if (m_databaseThread != QThread::currentThread()) {
        return {};
    }
    m_select->bindValue(0, key);
    const bool found = m_select->exec() && m_select->next();
    QVariant value = found ? m_select->value(0) : QVariant();
    m_select->finish();
    return value;
}
