// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/history/RollUpFile.h"

#include "storage/DSqlQuery.h"
#include "storage/DatabaseFiles.h"
#include "ui/history/CountTable.h"

#include <QFile>
#include <QVariant>

#include <algorithm>
#include <atomic>

namespace {

/// A file of another version is not read: count up whenever its tables or their meaning change.
constexpr int Version = 2;

const QString Settled = QStringLiteral("settled");
const QString Yes = QStringLiteral("1");
const QString No = QStringLiteral("0");

QString nextName()
{
    static std::atomic<int> next = 1;
    return QStringLiteral("tv-rollup-connection-") + QString::number(next++);
}

/// The rows of one `period` ("day", "month") and profile lie side by side.
QString createCounts(const CountTableText& table, const QString& period)
{
    return QStringLiteral("CREATE TABLE %1_%2s (%2 INTEGER, profile INTEGER, %3, %4, "
                          "PRIMARY KEY (%2, profile, %5)) WITHOUT ROWID")
        .arg(table.name, period, table.things.join(QStringLiteral(", ")),
             table.values.join(QStringLiteral(", ")), CountTableTexts::names(table.things));
}

QStringList tableStatements()
{
    QStringList statements{
        QStringLiteral("CREATE TABLE state (name TEXT PRIMARY KEY, value TEXT) WITHOUT ROWID"),
        QStringLiteral("CREATE TABLE hours (day INTEGER, hour INTEGER, profile INTEGER, "
                       "keys INTEGER, clicks INTEGER, scrolls INTEGER, inches REAL, "
                       "uptime_ms INTEGER, PRIMARY KEY (day, hour, profile)) WITHOUT ROWID"),
    };
    for (const CountTable table : CountTables) {
        statements += createCounts(CountTableTexts::of(table), QStringLiteral("day"));
        statements += createCounts(CountTableTexts::of(table), QStringLiteral("month"));
    }
    statements += QStringLiteral("PRAGMA user_version=%1").arg(Version);
    return statements;
}

} // namespace

RollUpFile::RollUpFile(const QString& fileName)
    : m_fileName(fileName)
    , m_connectionName(nextName())
{
}

RollUpFile::~RollUpFile()
{
    if (m_connection.isOpen()) {
        settle();
    }
    close();
}

bool RollUpFile::open()
{
    if (!QFile::exists(m_fileName) || !DatabaseFiles(m_fileName).makePrivate() ||
        !openConnection()) {
        return false;
    }
    DSqlQuery version(m_connection);
    const bool isOurs = version.exec(QStringLiteral("PRAGMA user_version")) && version.next() &&
                        version.value(0).toInt() == Version;
    version.finish();
    m_isSettled = isOurs && value(Settled) == Yes;
    return m_isSettled;
}

bool RollUpFile::create()
{
    remove();
    return DatabaseFiles(m_fileName).makePrivate() && openConnection() && createTables();
}

bool RollUpFile::openConnection()
{
    m_connection = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), m_connectionName);
    m_connection.setDatabaseName(m_fileName);
    return m_connection.open() && exec(QStringLiteral("PRAGMA journal_mode=MEMORY")) &&
           exec(QStringLiteral("PRAGMA synchronous=OFF")) &&
           exec(QStringLiteral("PRAGMA cache_size=-8192"));
}

bool RollUpFile::createTables()
{
    const QStringList statements = tableStatements();
    m_connection.transaction();
    const bool isMade = std::ranges::all_of(
        statements, [this](const QString& statement) { return exec(statement); });
    m_isSettled = false;
    return isMade && setValue(Settled, No) && m_connection.commit();
}

bool RollUpFile::exec(const QString& statement) const
{
    return DSqlQuery(m_connection).exec(statement);
}

void RollUpFile::close()
{
    m_connection = QSqlDatabase();
    if (QSqlDatabase::contains(m_connectionName)) {
        QSqlDatabase::removeDatabase(m_connectionName);
    }
}

void RollUpFile::remove()
{
    close();
    QFile::remove(m_fileName);
}

QString RollUpFile::value(const QString& name) const
{
    DSqlQuery query(m_connection);
    query.prepare(QStringLiteral("SELECT value FROM state WHERE name=?"));
    query.bindValue(0, name);
    return query.exec() && query.next() ? query.value(0).toString() : QString();
}

bool RollUpFile::setValue(const QString& name, const QString& value)
{
    DSqlQuery query(m_connection);
    query.prepare(QStringLiteral("REPLACE INTO state (name, value) VALUES (?, ?)"));
    query.bindValue(0, name);
    query.bindValue(1, value);
    return query.exec();
}

bool RollUpFile::begin()
{
    return (!m_isSettled || writeThrough(No)) && m_connection.transaction();
}

bool RollUpFile::commit()
{
    return m_connection.commit();
}

void RollUpFile::rollback()
{
    m_connection.rollback();
}

bool RollUpFile::settle()
{
    return m_isSettled || writeThrough(Yes);
}

bool RollUpFile::writeThrough(const QString& settled)
{
    // This one commit waits until all of the file is on the disk.
    const bool isWritten =
        exec(QStringLiteral("PRAGMA synchronous=FULL")) && setValue(Settled, settled);
    m_isSettled = isWritten && settled == Yes;
    return exec(QStringLiteral("PRAGMA synchronous=OFF")) && isWritten;
}
