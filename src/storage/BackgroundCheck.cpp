// SPDX-License-Identifier: GPL-3.0-or-later
#include "storage/BackgroundCheck.h"

#include "storage/DSqlQuery.h"
#include "storage/ReadingConnection.h"
#include "storage/ThreadPriority.h"

#include <QThread>

namespace {

/// Within the seconds that a check takes, few changes move pages of the file: three checks in a row
/// hardly ever meet one.
constexpr int MostAttempts = 3;

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
    // A client that starts with the session is not alone.
    ThreadPriority::stepBack();
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
