// SPDX-License-Identifier: GPL-3.0-or-later
#include "storage/Database.h"

#include "base/Log.h"
#include "storage/BackgroundCheck.h"
#include "storage/DSqlQuery.h"
#include "storage/DatabaseBackup.h"
#include "storage/DatabaseCleaner.h"
#include "storage/DatabaseConnection.h"
#include "storage/HistoryStamp.h"
#include "storage/IntegrityCheck.h"
#include "storage/Migrations.h"

#include <QDateTime>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QSqlError>

namespace {

Database* s_instance = nullptr;

} // namespace

/// The scripts lie in a static library, whose resources register themselves only when asked to.
/// (The macro works in the global namespace alone.)
static void initResources()
{
    Q_INIT_RESOURCE(tallyvane_sql);
}

Database::Database(const QString& dataDirectory, DatabasePrompts& prompts, QObject* parent)
    : QObject(parent)
    , m_prompts(prompts)
{
    Q_ASSERT(s_instance == nullptr);
    s_instance = this;
    initResources();
    loadDatabase(dataDirectory + QLatin1Char('/') + DatabaseFiles::Name);
}

Database::~Database()
{
    closeDatabase();
    m_connection = QSqlDatabase();
    QSqlDatabase::removeDatabase(ConnectionName);
    s_instance = nullptr;
}

Database* Database::instance()
{
    return s_instance;
}

void Database::loadDatabase(const QString& fileName)
{
    closeDatabase();
    m_files = DatabaseFiles(fileName);
    Outcome outcome = open();
    if (outcome == Outcome::Damaged) {
        outcome = rescue();
    }
    finishOpening(outcome);
}

void Database::finishOpening(Outcome outcome)
{
    switch (outcome) {
    case Outcome::Opened:
        m_files.unmarkDamaged();
        if (setupDatabase()) {
            backupIfDue();
        }
        return;
    case Outcome::Newer:
        Log::error(
            "Database version ({}) is higher then supported ({}). This is very bad and I will now "
            "reset the database to be safe!",
            m_version, SchemaVersion);
        closeDatabase();
        m_state = State::NewerVersion;
        m_prompts.showFailure(
            tr("Version"),
            tr("It is not supported to downgrade the Tallyvane client, please install "
               "the latest version and try again."));
        return;
    case Outcome::Declined:
        fail(tr("Critical database error!"));
        return;
    case Outcome::Damaged:
    case Outcome::Failed:
        fail(m_failure);
    }
}

Database::Outcome Database::open()
{
    const DatabaseFiles::Kind kind = m_files.kind();
    Log::info("Database file: {}{}", m_files.fileName(),
              kind == DatabaseFiles::Kind::Missing ? " does not exist, starting fresh!" : "");
    // A file system that lost power may leave nothing of a file but its name.
    const bool lostItsContent = kind == DatabaseFiles::Kind::Empty && m_files.hasBackup();
    if (lostItsContent || kind == DatabaseFiles::Kind::Stub) {
        m_failure = tr("Unable to open database: ") + tr("the file is too short");
        return Outcome::Damaged;
    }
    m_version = m_files.storedVersion().value_or(0);
    if (m_version > SchemaVersion) {
        return Outcome::Newer;
    }
    m_access = m_files.access();
    if (!prepareFile() || !openConnection()) {
        return kind == DatabaseFiles::Kind::Other ? Outcome::Damaged : Outcome::Failed;
    }
    return checkOpened();
}

bool Database::prepareFile()
{
    if (m_files.kind() == DatabaseFiles::Kind::Missing && !m_files.keepBackup()) {
        m_failure = setupFailure(tr("the database backup could not be kept"));
        return false;
    }
    // Where this fails, opening fails as well and says why, or the mode is the owner's wish.
    if (m_access == DatabaseFiles::Access::ReadWrite &&
        m_files.kind() != DatabaseFiles::Kind::Other) {
        m_files.makePrivate();
    }
    return true;
}

bool Database::openConnection()
{
    QElapsedTimer timer;
    timer.start();
    m_connection = DatabaseConnection::named(ConnectionName);
    m_connection.setDatabaseName(m_files.fileName());
    m_connection.setConnectOptions(DatabaseConnection::options(m_access));
    Log::info("Database connection options: {}", m_connection.connectOptions());
    if (!m_connection.open()) {
        m_failure = tr("Unable to open database: ") + m_connection.lastError().text();
        return false;
    }
    Log::info("Opened database in: {} ms", timer.elapsed());
    Log::info("Database size: {}", getDatabaseFileSize());
    return true;
}

Database::Outcome Database::checkOpened()
{
    m_version = readVersion();
    if (m_version > SchemaVersion) {
        return Outcome::Newer;
    }
    DatabaseConnection::tune(m_connection);
    m_unchecked = mayBeCheckedLater();
    if (m_unchecked) {
        return Outcome::Opened;
    }
    const IntegrityCheck check = IntegrityCheck::run(m_connection, IntegrityCheck::Depth::Quick);
    Log::info("Database check: {}", check.text);
    if (check.verdict == IntegrityCheck::Verdict::Sound) {
        return Outcome::Opened;
    }
    m_failure = tr("Unable to open database: failed database integrity check (") + check.text +
                QLatin1Char(')');
    return check.verdict == IntegrityCheck::Verdict::Damaged ? Outcome::Damaged : Outcome::Failed;
}

/// A damage to the first pages, without which nothing can be read, shows at once; an upgrade
/// rewrites tables, and needs a sound database.
bool Database::mayBeCheckedLater()
{
    return getDatabaseFileSize() > LargestCheckedAtOpening && m_version == SchemaVersion &&
           !m_files.isMarkedDamaged() && BackgroundCheck::suits(m_connection);
}

void Database::checkInBackground()
{
    if (!m_unchecked || m_backgroundCheck) {
        return;
    }
    m_backgroundCheck = std::make_unique<BackgroundCheck>(m_connection);
    QObject::connect(m_backgroundCheck.get(), &BackgroundCheck::finished, this,
                     &Database::takeBackgroundCheck);
    m_backgroundCheck->start();
}

void Database::takeBackgroundCheck(const IntegrityCheck& check)
{
    Log::info("Database check: {}", check.text);
    if (check.verdict == IntegrityCheck::Verdict::Sound) {
        m_unchecked = false;
        backupIfDue();
    } else if (check.verdict == IntegrityCheck::Verdict::Damaged && m_files.markDamaged()) {
        Q_EMIT damageFound();
    }
}

int Database::readVersion()
{
    DSqlQuery query(this, QStringLiteral("PRAGMA user_version"), true);
    return query.next() ? query.value(0).toInt() : 0;
}

Database::Outcome Database::rescue()
{
    Log::error("{}", m_failure);
    closeDatabase();
    Log::warn("Detected a database failure..trying to restore!");
    const Outcome restored = restore();
    if (restored != Outcome::Damaged) {
        return restored;
    }
    closeDatabase();
    Log::error("Unable to recover from database backup file!");
    if (!m_prompts.confirmFreshDatabase(tr("Something really bad happened to the database and the "
                                           "backup database. The only way to "
                                           "recover is to create a new database. This will not "
                                           "effect your unzurged stats, but will "
                                           "wipe the rest. Continue?"))) {
        Log::warn("User declined fresh database");
        return Outcome::Declined;
    }
    return startFresh();
}

Database::Outcome Database::restore()
{
    const QString backup = m_files.backupFileName();
    if (!m_files.hasBackup()) {
        return Outcome::Damaged;
    }
    // Looked at before it is put in place, so that a user who then wants no new database finds all
    // files as they were.
    if (!IntegrityCheck::isSound(backup)) {
        return Outcome::Damaged;
    }
    const std::optional<QString> kept = m_files.keepDamaged();
    if (!kept) {
        m_failure = setupFailure(m_failure);
        return Outcome::Failed;
    }
    m_keptFile = *kept;
    if (const std::optional<QString> reason = DatabaseFiles::copy(backup, m_files.fileName())) {
        m_failure = setupFailure(*reason);
        return Outcome::Failed;
    }
    Log::info("Copied: {} to: {}", backup, m_files.fileName());
    const Outcome outcome = open();
    if (outcome == Outcome::Opened) {
        Log::info("Recovered database from backup file!");
        HistoryStamp::renew(m_connection);
    }
    return outcome;
}

Database::Outcome Database::startFresh()
{
    const std::optional<QString> kept = m_files.keepDamaged();
    if (!kept || !m_files.keepBackup() || !m_files.startEmpty()) {
        m_failure = setupFailure(m_failure);
        return Outcome::Failed;
    }
    m_keptFile = *kept;
    return open();
}

bool Database::setupDatabase()
{
    if (m_access == DatabaseFiles::Access::ReadOnly) {
        Log::warn("Database: Database is read-only");
        setupDatabase_TempTables();
        m_state = State::ReadOnly;
        m_prompts.showFailure(
            tr("Database failure"),
            tr("The database '%1' is read-only. Tallyvane cannot store any statistics "
               "until you fix this problem.")
                .arg(m_files.fileName()));
        return false;
    }
    if (!copyBeforeUpgrade() || !createSchema() || !upgrade()) {
        fail(m_failure);
        return false;
    }
    m_state = State::Open;
    return true;
}

bool Database::copyBeforeUpgrade()
{
    m_version = readVersion();
    if (m_version == 0 || m_version == SchemaVersion) {
        return true;
    }
    m_connection.close();
    if (const auto reason =
            DatabaseFiles::copy(m_files.fileName(), m_files.copyFileName(m_version))) {
        m_failure = setupFailure(*reason);
        return false;
    }
    if (!openConnection()) {
        return false;
    }
    DatabaseConnection::tune(m_connection);
    return true;
}

bool Database::createSchema()
{
    DSqlQuery query(this);
    const bool created = query.executeSqlFile(QStringLiteral(":/database.sql"));
    setupDatabase_TempTables();
    // An older database may lack columns that an index of the final schema names: that is what its
    // upgrade is for. A current one is whole but for what a full disk kept from it.
    if (!created && m_version == 0) {
        m_failure = setupFailure(query.scriptError());
        return false;
    }
    return true;
}

bool Database::upgrade()
{
    if (m_version == 0) {
        HistoryStamp::renew(m_connection);
        DSqlQuery query(this);
        const bool ok = query.exec(QStringLiteral("PRAGMA user_version=%1;").arg(SchemaVersion));
        Log::info("First time database use detected, setting version to: {}", SchemaVersion);
        m_failure = ok ? QString() : setupFailure(query.lastError().databaseText());
        return ok;
    }
    if (m_version == SchemaVersion) {
        return true;
    }
    Log::info("Upgrading database from {} to {}", m_version, SchemaVersion);
    m_connection.close();
    if (!openConnection()) {
        return false;
    }
    DatabaseConnection::tune(m_connection);
    setupDatabase_TempTables();
    Migrations migrations(m_connection);
    if (!migrations.run(m_version, SchemaVersion)) {
        m_failure = setupFailure(migrations.failure());
        return false;
    }
    return true;
}

bool Database::setupDatabase_TempTables()
{
    return DSqlQuery(this).executeSqlFile(QStringLiteral(":/database-temp-tables.sql"));
}

QString Database::checkDatabase()
{
    QString text = QStringLiteral("db isn't open!");
    if (m_connection.isOpen()) {
        text = IntegrityCheck::run(m_connection, IntegrityCheck::Depth::Quick).text;
    }
    Log::info("Database check: {}", text);
    return text;
}

QString Database::checkDatabaseFull()
{
    QString text = QStringLiteral("db isn't open!");
    if (m_connection.isOpen()) {
        text = IntegrityCheck::run(m_connection, IntegrityCheck::Depth::Full).text;
    }
    Log::info("Database integrity check: {}", text);
    return text;
}

bool Database::cleanDatabase()
{
    return tellCleaned(DatabaseCleaner(m_connection).cleanStatistics());
}

bool Database::cleanDatabaseUser()
{
    return tellCleaned(DatabaseCleaner(m_connection).cleanEverythingCounted());
}

bool Database::tellCleaned(bool cleaned)
{
    if (cleaned) {
        Q_EMIT this->cleaned();
    }
    return cleaned;
}

void Database::lend()
{
    m_lent = true;
    DSqlQuery(this).exec(QStringLiteral("PRAGMA busy_timeout = 0"));
}

void Database::takeBack()
{
    DSqlQuery(this).exec(
        QStringLiteral("PRAGMA busy_timeout = %1").arg(DatabaseConnection::BusyTimeoutMs));
    m_lent = false;
    Q_EMIT takenBack();
}

void Database::fail(const QString& text)
{
    Log::error("{}", text);
    closeDatabase();
    m_state = State::Failed;
    m_prompts.showFailure(tr("Database failure"), text);
}

QString Database::setupFailure(const QString& reason) const
{
    return tr("Unable to setup database: %1\n\nPlease check your permissions on: %2")
        .arg(reason, m_files.directory());
}

void Database::closeDatabase()
{
    if (m_connection.isOpen()) {
        Q_EMIT aboutToClose();
    }
    m_backgroundCheck.reset();
    m_backup.reset();
    m_connection.close();
    m_unchecked = false;
    m_state = State::Closed;
}

bool Database::reconnectIfNeeded()
{
    if (m_connection.isOpen()) {
        return true;
    }
    if (m_state != State::Closed || m_files.kind() != DatabaseFiles::Kind::Regular) {
        return false;
    }
    finishOpening(open());
    return m_connection.isOpen();
}

void Database::backupDatabase()
{
    if (m_state != State::Open || m_unchecked || (m_backup && m_backup->isRunning())) {
        return;
    }
    m_backup = std::make_unique<DatabaseBackup>(m_connection, m_files.backupFileName());
    QObject::connect(m_backup.get(), &DatabaseBackup::finished, this, &Database::backupFinished);
    if (!m_backup->start()) {
        m_backup.reset();
    }
}

void Database::backupIfDue()
{
    constexpr qint64 daySeconds = 86'400;
    const QFileInfo backup(m_files.backupFileName());
    const QDateTime now = QDateTime::currentDateTime();
    if (!m_files.hasBackup() || backup.lastModified().secsTo(now) > daySeconds) {
        backupDatabase();
    }
}

QSqlDatabase Database::connection() const
{
    return m_connection;
}

qint64 Database::getDatabaseFileSize() const
{
    return QFileInfo(m_files.fileName()).size();
}

void Database::setProfileFilter(std::optional<int> profileId)
{
    m_profileFilter = profileId;
}

std::optional<int> Database::profileFilter() const
{
    return m_profileFilter;
}

QString Database::generateWhereQueryProfileFilter(const QString& table) const
{
    if (!m_profileFilter) {
        return QStringLiteral("1");
    }
    const QString column =
        table.isEmpty() ? QStringLiteral("profile_id") : table + QStringLiteral(".profile_id");
    return column + QStringLiteral(" = ") + QString::number(*m_profileFilter);
}
