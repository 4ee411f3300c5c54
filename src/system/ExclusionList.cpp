// SPDX-License-Identifier: GPL-3.0-or-later
#include "system/ExclusionList.h"

#include "storage/DSqlQuery.h"
#include "storage/Database.h"

namespace {

struct Statements
{
    QString load;
    QString add;
    QString remove;
};

const Statements& statementsFor(ExclusionList::Kind kind)
{
    static const Statements applications{
        QStringLiteral("SELECT \"path\" FROM application_ignore"),
        QStringLiteral("INSERT OR IGNORE INTO application_ignore (\"path\") VALUES(?)"),
        QStringLiteral("DELETE FROM application_ignore WHERE \"path\" = ?")};
    static const Statements interfaces{
        QStringLiteral("SELECT \"mac_address\" FROM network_interfaces_ignore"),
        QStringLiteral(
            "INSERT OR IGNORE INTO network_interfaces_ignore (\"mac_address\") VALUES(?)"),
        QStringLiteral("DELETE FROM network_interfaces_ignore WHERE upper(\"mac_address\") = ?")};
    return kind == ExclusionList::Kind::Applications ? applications : interfaces;
}

} // namespace

ExclusionList::ExclusionList(Database* database, Kind kind)
    : m_database(database)
    , m_kind(kind)
{
    reload();
}

bool ExclusionList::contains(const QString& item) const
{
    return !m_items.isEmpty() && m_items.contains(normalised(item));
}

QStringList ExclusionList::items() const
{
    return m_items.values();
}

void ExclusionList::add(const QString& item)
{
    const QString key = normalised(item);
    if (key.isEmpty() || m_items.contains(key)) {
        return;
    }
    m_items.insert(key);
    write(statementsFor(m_kind).add, key);
}

void ExclusionList::remove(const QString& item)
{
    const QString key = normalised(item);
    if (m_items.remove(key)) {
        write(statementsFor(m_kind).remove, key);
    }
}

void ExclusionList::reload()
{
    if (!m_database) {
        return;
    }
    DSqlQuery query(m_database);
    if (!query.exec(statementsFor(m_kind).load)) {
        return; // What is known already stays better than nothing.
    }
    m_items.clear();
    while (query.next()) {
        m_items.insert(normalised(query.value(0).toString()));
    }
}

QString ExclusionList::normalised(const QString& item) const
{
    return m_kind == Kind::Interfaces ? item.toUpper() : item;
}

void ExclusionList::write(const QString& statement, const QString& item)
{
    if (!m_database) {
        return;
    }
    DSqlQuery query(m_database);
    if (query.prepare(statement)) {
        query.addBindValue(item);
        query.exec();
    }
}
