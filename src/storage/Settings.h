// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "storage/SettingsKeys.h"

#include <QDateTime>
#include <QHash>
#include <QReadWriteLock>
#include <QString>
#include <QVariant>

#include <memory>

class Database;
class DSqlQuery;
class QThread;

/// Every preference and small piece of state, as rows of the table `settings` with a cache in front.
///
/// Thread: `get`, `has` and `value` on any thread; everything else on the main thread, where the
/// database connection lives.
class Settings
{
public:
    /// The one store of the process; exists from first use, holds nothing before `init`.
    static Settings& instance();

    /// Prepares the statements on `database`'s connection and loads every row into the cache, whose
    /// former content goes. Call again after the database was opened anew.
    void init(Database* database);

    /// Releases the statements before the connection closes. What is cached can still be read.
    void close();

    /// Stores the default of every key that has one and no row. A user's value is never overwritten.
    void initializeDefaultSettings();

    bool setDefault(const QString& key, const QVariant& value);

    /// The value of `key`, or `defaultValue` where it is neither cached nor stored. Text, as SQLite
    /// returns it, where the row was loaded; as it was set, where it was set in this run.
    QVariant get(const QString& key, const QVariant& defaultValue) const;
    bool has(const QString& key) const;

    /// Stores a value; the cache holds it even where the row could not be written (false).
    bool set(const QString& key, const QVariant& value);
    bool set(const QString& key, const long& value); ///< Stored as decimal text.
    bool setDouble(const QString& key, const double& value);
    void del(const QString& key);

    /// The value of a typed key, converted from any stored form; the key's own fallback where there is
    /// none or where the stored text is no such value.
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

private:
    Settings();
    ~Settings();
};
