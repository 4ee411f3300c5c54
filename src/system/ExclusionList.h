// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QSet>
#include <QString>
#include <QStringList>

class Database;

/// What the user took out of the statistics: application paths in the table `application_ignore`,
/// or interfaces, by MAC address, in `network_interfaces_ignore`.
///
/// Answered from memory; a change goes to the table as well. Where the table cannot be written,
/// which the query logs, the change still holds until the client ends. Thread: main.
class ExclusionList
{
public:
    enum class Kind
    {
        Applications, ///< Compared exactly, as paths are.
        Interfaces,   ///< Compared without regard to case.
    };

    /// Loads the list. Without a database it starts empty and is kept in memory only.
    ExclusionList(Database* database, Kind kind);

    bool contains(const QString& item) const;
    QStringList items() const;     ///< In no order.
    void add(const QString& item); ///< An empty item is no exclusion and is left out.
    void remove(const QString& item);

    /// Reads the table again, after something else changed it.
    void reload();

private:
    QString normalised(const QString& item) const;
    void write(const QString& statement, const QString& item);

    Database* m_database;
    Kind m_kind;
    QSet<QString> m_items;
};
