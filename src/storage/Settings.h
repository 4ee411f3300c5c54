// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "storage/SettingsKeys.h"

#include <QDateTime>
#include <QHash>
#include <QReadWriteLock>
#include <QSet>
#include <QString>
#include <QVariant>

#include <atomic>
#include <memory>
#include <optional>

class Database;
class DSqlQuery;
class QThread;

/// Every preference and small piece of state, as rows of the table `settings` with a cache in
/// front.
///
/// Thread: `get`, `has` and `value` on any thread; everything else on the main thread, where the
/// database connection lives.
class Settings
{
public:
    /// The one store of the process; exists from first use, holds nothing before `init`.
    static Settings& instance();

    Settings(const Settings&) = delete;
    Settings& operator=(const Settings&) = delete;

    /// Prepares the statements on `database`'s connection and loads every row into the cache, whose
    /// former content goes. Call again after the database was opened anew.
    void init(Database* database);

    /// Releases the statements; the database's signal `aboutToClose` does so by itself. What is
    /// cached can still be read.
    void close();

    /// Stores the default of every key that has one and no row. A user's value is never
    /// overwritten.
    void initializeDefaultSettings();

    /// Stores `value` where the key has no row. False if the statement failed.
    bool setDefault(const QString& key, const QVariant& value);

    /// The value of `key`, or `defaultValue` where it is neither cached nor stored. Text, as SQLite
    /// returns it, where the row was loaded; as it was set, where it was set in this run.
    QVariant get(const QString& key, const QVariant& defaultValue) const;
    bool has(const QString& key) const;

    /// Stores a value; the cache holds it even where the row could not be written (false). While
    /// the database is lent, the rows wait until it is taken back.
    bool set(const QString& key, const QVariant& value);
    bool set(const QString& key, const long& value); ///< Stored as decimal text.
    bool setDouble(const QString& key, const double& value);
    void del(const QString& key);

    /// The value of a typed key, converted from any stored form; the key's own fallback where there
    /// is none or where the stored text is no such value.
    template <typename T>
    T value(const SettingKey<T>& key) const
    {
        return convertSetting<T>(get(key.name(), {}), key.fallback);
    }

    template <typename T>
    bool setValue(const SettingKey<T>& key, const T& value)
    {
        return set(key.name(), QVariant::fromValue(value));
    }

    template <typename T>
    bool has(const SettingKey<T>& key) const
    {
        return has(key.name());
    }

private:
    Settings();
    ~Settings();

    std::optional<QVariant> cached(const QString& key) const;
    QVariant readRow(const QString& key) const; ///< Invalid where there is none.
    void storeHeld();

    mutable QReadWriteLock m_lock; ///< Guards `m_cache`.
    QHash<QString, QVariant> m_cache;

    QSet<QString> m_held; ///< Keys set or deleted while the database was lent.
    Database* m_database = nullptr;
    std::atomic<QThread*> m_databaseThread =
        nullptr; ///< Where the statements may run; null: nowhere.
    std::unique_ptr<DSqlQuery> m_select;
    std::unique_ptr<DSqlQuery> m_replace;
    std::unique_ptr<DSqlQuery> m_insertDefault;
};
