// SPDX-License-Identifier: GPL-3.0-or-later
#include "storage/SampleDatabase.h"

#include "storage/DSqlQuery.h"
#include "support/TestFiles.h"

#include <QRegularExpression>
#include <QSqlRecord>

namespace {

QStringList linesOf(const QString& name)
{
    const QString path = QStringLiteral(TALLYVANE_SOURCE_DIR "/tests/storage/") + name;
    return QString::fromUtf8(readFile(path)).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
}

} // namespace

SampleDatabase::SampleDatabase(const QString& fileName)
    : m_connection(QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("sample")))
{
    m_connection.setDatabaseName(fileName);
    m_connection.open();
}

SampleDatabase::~SampleDatabase()
{
    m_connection = QSqlDatabase();
    QSqlDatabase::removeDatabase(QStringLiteral("sample"));
}

void SampleDatabase::create(const QString& fileName, int version)
{
    static const QRegularExpression heading(QStringLiteral("^-- Versions? (\\d+)(?: to (\\d+))?$"));
    SampleDatabase sample(fileName);
    bool belongs = false;
    sample.exec(QStringLiteral("BEGIN"));
    for (const QString& line : linesOf(QStringLiteral("databases.sql"))) {
        if (const auto match = heading.match(line); match.hasMatch()) {
            const int first = match.captured(1).toInt();
            const int last = match.hasCaptured(2) ? match.captured(2).toInt() : first;
            belongs = first <= version && version <= last;
        } else if (belongs) {
            sample.exec(line);
        }
    }
    sample.exec(QStringLiteral("PRAGMA user_version = %1").arg(version));
    sample.exec(QStringLiteral("COMMIT"));
}

bool SampleDatabase::exec(const QString& statement)
{
    return DSqlQuery(m_connection).exec(statement);
}

int SampleDatabase::version() const
{
    return rows(QStringLiteral("PRAGMA user_version")).toInt();
}

bool SampleDatabase::isSound() const
{
    return rows(QStringLiteral("PRAGMA integrity_check")) == QStringLiteral("ok");
}

QStringList SampleDatabase::tables() const
{
    return rows(QStringLiteral("SELECT name FROM sqlite_master WHERE type = 'table' "
                               "AND name NOT LIKE 'sqlite_%' ORDER BY name"))
        .split(QStringLiteral("; "));
}

QStringList SampleDatabase::columns(const QString& table) const
{
    return rows(QStringLiteral("SELECT name FROM pragma_table_info('%1')").arg(table))
        .split(QStringLiteral("; "));
}

QString SampleDatabase::rows(const QString& query) const
{
    return rowsOf(m_connection, query);
}

QString SampleDatabase::rowsOf(const QSqlDatabase& connection, const QString& query)
{
    DSqlQuery select(connection);
    select.exec(query);
    QStringList rows;
    while (select.next()) {
        QStringList columns;
        for (int i = 0; i < select.record().count(); ++i) {
            columns << select.value(i).toString();
        }
        rows << columns.join(QLatin1Char('|'));
    }
    return rows.join(QStringLiteral("; "));
}

QString SampleDatabase::description(const QString& table) const
{
    return description(m_connection, table, QStringLiteral("main"));
}

QString SampleDatabase::description(const QSqlDatabase& connection, const QString& table,
                                    const QString& schema)
{
    const QString columns =
        QStringLiteral("SELECT c.name || ' ' || c.type || iif(c.pk, ' PRIMARY KEY', '')"
                       " || iif(c.pk AND t.sql LIKE '%AUTOINCREMENT%', ' AUTOINCREMENT', '')"
                       " || iif(c.\"notnull\", ' NOT NULL', '')"
                       " || coalesce(' DEFAULT ' || c.dflt_value, '')"
                       " FROM %1.sqlite_master t JOIN pragma_table_info(t.name, '%1') c"
                       " WHERE t.name = '%2' ORDER BY c.cid");
    const QString indexes = QStringLiteral(
        "SELECT iif(i.\"unique\", 'unique ', '') || i.name || ' (' || (SELECT group_concat("
        "name, ', ') FROM (SELECT name FROM pragma_index_info(i.name, '%1') ORDER BY seqno))"
        " || ')' FROM pragma_index_list('%2', '%1') i ORDER BY i.name");
    return rowsOf(connection, columns.arg(schema, table)) + QStringLiteral(" | ") +
           rowsOf(connection, indexes.arg(schema, table));
}

QMap<QString, QString> expectedSchema(const QString& fileName)
{
    QMap<QString, QString> tables;
    for (const QString& line : linesOf(fileName)) {
        if (!line.startsWith(QLatin1Char('#'))) {
            const QStringList parts = line.split(QLatin1Char('|'));
            tables.insert(parts.at(0).trimmed(),
                          parts.at(1).trimmed() + QStringLiteral(" | ") + parts.at(2).trimmed());
        }
    }
    return tables;
}
