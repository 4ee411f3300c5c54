// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/KeysToday.h"

#include "storage/Database.h"
#include "ui/history/HourRows.h"

KeysToday::KeysToday(Database& database)
    : m_database(database)
{
}

qint64 KeysToday::operator()()
{
    if (!m_database.isLent()) {
        const QDate today = QDate::currentDate();
        m_last = HourRows::keys(m_database.connection(), {.first = today, .last = today})
                     .value_or(m_last);
    }
    return m_last;
}
