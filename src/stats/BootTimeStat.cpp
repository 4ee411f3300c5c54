// SPDX-License-Identifier: GPL-3.0-or-later
#include "stats/BootTimeStat.h"

#include "base/Format.h"
#include "storage/DSqlQuery.h"
#include "storage/Database.h"
#include "system/AbstractSystem.h"

BootTimeStat::BootTimeStat(AbstractSystem* system, QObject* parent)
    : Stat(system, parent)
{
    connect(Database::instance(), &Database::cleaned, this, [this] { m_recorded = false; });
}

int BootTimeStat::getUpdateMilliSecondMod() const
{
    return 60'000;
}

int BootTimeStat::getUpdateMilliSecondModUI() const
{
    return 1'000;
}

int BootTimeStat::getFrequentUpdateMilliSecond() const
{
    return 5'000;
}

int BootTimeStat::getFrequentUpdateMilliSecondUI() const
{
    return 1'000;
}

int BootTimeStat::getInfrequentUpdateMilliSecond() const
{
    return 60'000;
}

void BootTimeStat::onEnabled()
{
    m_running = true;
}

void BootTimeStat::onDisabled()
{
    m_running = false;
}

void BootTimeStat::doInfrequentUpdate(QDateTime, bool)
{
    if (!m_recorded) {
        m_recorded = true;
        addCurrentBootTime();
    }
}

void BootTimeStat::addCurrentBootTime()
{
    const QDateTime bootTime = system().getBootTime();
    const QDateTime now = QDateTime::currentDateTime();
    // After the clock was set back, the history with this boot's row was moved along, and the boot
    // seems to lie ahead. Added again, it would pass for a recent boot until then.
    if (!m_running || !bootTime.isValid() || bootTime > now) {
        return;
    }
    DSqlQuery recent(Database::instance());
    recent.exec(QStringLiteral("SELECT * FROM uptimes "
                               "WHERE boot_time >= datetime('now', 'localtime', '-30 seconds')"));
    const bool isRecorded = recent.next();
    recent.finish();
    if (isRecorded) {
        return;
    }
    DSqlQuery insert(
        Database::instance(),
        QStringLiteral(R"(INSERT OR IGNORE INTO uptimes ("boot_time", "end_time") VALUES(?, ?))"),
        false);
    // As text of SQLite's own form. A time bound as it is would be stored with a "T" and its
    // milliseconds: later than any time of that day, so that a second boot would not be found.
    insert.bindValue(0, Format::isoDateTime(bootTime));
    insert.bindValue(1, Format::isoDateTime(now));
    insert.exec();
}
