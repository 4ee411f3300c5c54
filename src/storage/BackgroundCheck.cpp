// SPDX-License-Identifier: GPL-3.0-or-later
#include "storage/BackgroundCheck.h"

#include "storage/DSqlQuery.h"
#include "storage/ReadingConnection.h"

#include <QThread>

#include <linux/ioprio.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

/// Within the seconds that a check takes, few changes move pages of the file: three checks in a row
/// hardly ever meet one.
constexpr int MostAttempts = 3;

/// Lets everyone else have the processor and the disk first: a client that starts with the session
/// is not alone. Both calls concern the calling thread only, see setpriority(2) and ioprio_set(2);
/// where one is refused, the check is merely less polite.
void stepBack()
{
    // Not the lowest priority: a busy machine shall not put the check off for ever.
    constexpr int niceness = 5;
    (void)::setpriority(PRIO_PROCESS, 0, niceness);
    (void)::syscall(SYS_ioprio_set, IOPRIO_WHO_PROCESS, 0, IOPRIO_PRIO_VALUE(IOPRIO_CLASS_IDLE, 0));
}

} // namespace

BackgroundCheck::BackgroundCheck(const QSqlDatabase& writer, QObject* parent)
    : QObject(parent)
    , m_writer(writer)
    , m_databaseFile(writer.databaseName())
{
}

BackgroundCheck::~BackgroundCheck()
{
    m_abandoned = true;
    if (m_thread) {
        m_thread->wait();
    }
}

bool BackgroundCheck::suits(const QSqlDatabase& writer)
{
    DSqlQuery schema(writer);
    return schema.exec(QStringLiteral("SELECT COUNT(*) FROM sqlite_master")) && schema.next() &&
           IntegrityCheck::canBeAbandoned(writer);
}

void BackgroundCheck::start()
{
    m_thread.reset(QThread::create([this] { check(); }));
    QObject::connect(m_thread.get(), &QThread::finished, this, &BackgroundCheck::end);
    m_thread->start();
}

void BackgroundCheck::check()
{
    stepBack();
    for (int attempt = 0; attempt < MostAttempts; ++attempt) {
        // A new connection each time, since it keeps what it has read.
        const ReadingConnection connection(m_databaseFile, ReadingConnection::Locking::None);
        const std::optional<IntegrityCheck> result = IntegrityCheck::runUntil(
            m_abandoned, connection.database(), IntegrityCheck::Depth::Quick);
        if (!result) {
            return;
        }
        m_result = *result;
        if (m_result.verdict == IntegrityCheck::Verdict::Sound) {
            return;
        }
    }
}

void BackgroundCheck::end()
{
    m_thread->wait();
    m_thread.reset();
    if (m_result.verdict != IntegrityCheck::Verdict::Sound) {
        m_result = IntegrityCheck::run(m_writer, IntegrityCheck::Depth::Quick);
    }
    Q_EMIT finished(m_result);
}
