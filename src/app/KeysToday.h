// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtGlobal>

class Database;

/// Answers how many keys were counted today. Thread: main.
class KeysToday
{
public:
    /// `database` outlives this object.
    explicit KeysToday(Database& database);

    /// The last answer, while the database is lent or cannot be read.
    qint64 operator()();

private:
    Database& m_database;
    qint64 m_last = 0;
};
