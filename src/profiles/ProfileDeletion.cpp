// SPDX-License-Identifier: GPL-3.0-or-later
#include "profiles/ProfileDeletion.h"

#include "base/Log.h"
#include "profiles/ProfileManager.h"
#include "storage/Database.h"
#include "storage/WritingConnection.h"

#include <QThread>

ProfileDeletion::ProfileDeletion(ProfileManager& profiles, QObject* parent)
    : QObject(parent)
    , m_profiles(profiles)
{
}

ProfileDeletion::~ProfileDeletion()
{
    cancelAndWait();
}

bool ProfileDeletion::start(int id)
{
    Database* database = Database::instance();
    if (isRunning() || id == ProfileManager::DefaultProfileId || database == nullptr ||
        database->state() != Database::State::Open || database->isLent()) {
        return false;
    }
    m_timer.start();
    m_cancelled = false;
    m_id = id;
    m_percent = -1;
    Q_EMIT m_profiles.signalNeedFlush();
    connect(database, &Database::aboutToClose, this, &ProfileDeletion::cancelAndWait,
            Qt::UniqueConnection);
    database->lend();
    const QString fileName = database->getDatabaseFileName();
    m_thread.reset(QThread::create([this, fileName, id] { run(fileName, id); }));
    connect(m_thread.get(), &QThread::finished, this, &ProfileDeletion::end);
    m_thread->start();
    return true;
}

void ProfileDeletion::cancel()
{
    m_cancelled = true;
}

void ProfileDeletion::cancelAndWait()
{
    cancel();
    if (m_thread) {
        m_thread->wait();
        end();
    }
}

void ProfileDeletion::run(const QString& fileName, int id)
{
    const WritingConnection connection(fileName);
    m_result = ProfileFold::Result::Failed;
    if (connection.isOpen()) {
        m_result = ProfileFold::deleteProfile(connection.database(), id, [this](int percent) {
            tell(percent);
            return !m_cancelled;
        });
    }
}

void ProfileDeletion::tell(int percent)
{
    if (percent <= m_percent) {
        return;
    }
    m_percent = percent;
    const auto emitOnMain = [this, percent] {
        if (isRunning()) {
            Q_EMIT progress(percent);
        }
    };
    QMetaObject::invokeMethod(this, emitOnMain, Qt::QueuedConnection);
}

/// The thread's signal may arrive when its deletion was waited for, or even the next one begun.
void ProfileDeletion::end()
{
    if (!m_thread || !m_thread->isFinished()) {
        return;
    }
    m_thread->wait();
    m_thread.reset();
    Database::instance()->takeBack();
    if (m_result == ProfileFold::Result::Deleted) {
        m_profiles.noteDeleted(m_id);
        Log::info("Deletion of profile took {}ms", m_timer.elapsed());
    } else if (m_result == ProfileFold::Result::Cancelled) {
        Log::info("Deletion of profile was cancelled, ID: {}", m_id);
    } else {
        Log::error("Unable to delete the profile with ID: {}", m_id);
    }
    m_profiles.databaseTakenBack();
    Q_EMIT finished(m_result);
}
