// SPDX-License-Identifier: GPL-3.0-or-later
// What an online backup of ten years of history costs its user: a copy of the database that
// TALLYVANE_HISTORY names is backed up to a server on the loopback. Printed are how long counting
// pauses, how long the checking, the zipping and the upload take, and for how long the main thread
// was held at most, beside the same for a plain copy of the file on a thread.
#include "bench/DataDirectory.h"
#include "storage/Database.h"
#include "storage/DatabaseBackupUtility.h"
#include "storage/Settings.h"
#include "support/TestDatabase.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QTcpServer>
#include <QTcpSocket>
#include <QThread>
#include <QTimer>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <atomic>
#include <ctime>
#include <map>
#include <utility>

namespace {

constexpr double MsPerNs = 1e-6;

/// Takes one upload on a thread of its own, so that receiving holds nobody else.
class Sink
{
public:
    Sink()
        : m_thread(QThread::create([this] { serve(); }))
    {
        m_thread->start();
        while (m_port == 0) {
            QThread::yieldCurrentThread();
        }
    }

    ~Sink() { m_thread->wait(); }

    Sink(const Sink&) = delete;
    Sink& operator=(const Sink&) = delete;

    QString url() const { return QStringLiteral("http://127.0.0.1:%1/").arg(m_port); }

private:
    void serve()
    {
        QTcpServer server;
        server.listen(QHostAddress::LocalHost);
        m_port = server.serverPort();
        if (!server.waitForNewConnection(-1)) {
            return;
        }
        const std::unique_ptr<QTcpSocket> socket(server.nextPendingConnection());
        QByteArray head;
        while (!head.contains("\r\n\r\n") && socket->waitForReadyRead()) {
            head += socket->readAll();
        }
        const qsizetype length = head.toLower().indexOf("content-length:");
        qint64 left = head.mid(length).split('\r').first().split(':').last().trimmed().toLongLong();
        left -= head.size() - head.indexOf("\r\n\r\n") - 4;
        while (left > 0 && socket->waitForReadyRead()) {
            left -= socket->readAll().size();
        }
        socket->write("HTTP/1.1 200 OK\r\nContent-Length: 0\r\n\r\n");
        socket->waitForBytesWritten();
        socket->waitForDisconnected(1000);
    }

    std::atomic<int> m_port = 0;
    std::unique_ptr<QThread> m_thread;
};

double threadCpuMs()
{
    timespec time = {};
    ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) * MsPerNs;
}

/// The longest time between two turns of the event loop that had something to do all along: by the
/// clock, in which other programs have their share, and of the thread alone.
class HoldWatch
{
public:
    HoldWatch()
    {
        m_clock.start();
        QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] { look(); });
        m_timer.start(1);
    }

    void report(benchmark::State& state)
    {
        look();
        state.counters["longestHoldMs"] = m_longestMs;
        state.counters["longestHoldCpuMs"] = m_longestCpuMs;
    }

private:
    void look()
    {
        m_longestMs = std::max(m_longestMs, static_cast<double>(m_clock.nsecsElapsed()) * MsPerNs);
        m_clock.start();
        const double cpuMs = threadCpuMs();
        m_longestCpuMs = std::max(m_longestCpuMs, cpuMs - std::exchange(m_cpuMs, cpuMs));
    }

    QTimer m_timer;
    QElapsedTimer m_clock;
    double m_cpuMs = threadCpuMs();
    double m_longestMs = 0;
    double m_longestCpuMs = 0;
};

void onlineBackup(benchmark::State& state)
{
    const DataDirectory directory;
    TestPrompts prompts;
    Database database(directory.path(), prompts);
    Settings::instance().init(&database);
    Sink sink;
    DatabaseBackupUtility backup(database, Settings::instance());
    QEventLoop loop;
    QElapsedTimer clock;
    std::map<QString, double> msAt;
    double pausedMs = 0;
    const auto end = [&](const QString& failure) {
        msAt[QStringLiteral("end")] = static_cast<double>(clock.nsecsElapsed()) * MsPerNs;
        if (!failure.isEmpty()) {
            state.SkipWithError(qPrintable(failure));
        }
        loop.quit();
    };
    using Utility = DatabaseBackupUtility;
    QObject::connect(&backup, &Utility::signalNeedCountingResumed, &loop,
                     [&] { pausedMs = static_cast<double>(clock.nsecsElapsed()) * MsPerNs; });
    QObject::connect(&backup, &Utility::signalUpdateStatus, &loop, [&](const QString& status) {
        msAt[status] = static_cast<double>(clock.nsecsElapsed()) * MsPerNs;
    });
    QObject::connect(&backup, &Utility::signalNeedUploadURL, &backup, [&] {
        backup.processGetDatabaseBackupUploadURL(QStringLiteral("get_db_backup_upload_url"), 200,
                                                 {{QStringLiteral("url"), sink.url()}}, {});
    });
    QObject::connect(&backup, &Utility::signalErrorWhilePreparing, &loop, end);
    QObject::connect(&backup, &Utility::signalBackupFinished, &loop, [&](bool successful) {
        end(successful ? QString() : QStringLiteral("failed"));
    });
    HoldWatch watch;
    clock.start();
    while (state.KeepRunning()) {
        backup.startBackup();
        loop.exec();
    }
    const auto took = [&](const char* from, const char* to) {
        return msAt[QString::fromLatin1(to)] - msAt[QString::fromLatin1(from)];
    };
    state.counters["pausedMs"] = pausedMs;
    state.counters["checkMs"] = took("Checking database..", "Zipping database..");
    state.counters["zipMs"] = took("Zipping database..", "Starting upload..");
    state.counters["uploadMs"] = took("Starting upload..", "end");
    watch.report(state);
    Settings::instance().close();
}

void referencePlainCopy(benchmark::State& state)
{
    const QTemporaryDir directory;
    HoldWatch watch;
    QEventLoop loop;
    while (state.KeepRunning()) {
        const std::unique_ptr<QThread> thread(
            QThread::create([&] { DataDirectory::copyHistory(directory.path()); }));
        QObject::connect(thread.get(), &QThread::finished, &loop, &QEventLoop::quit);
        thread->start();
        loop.exec();
        thread->wait();
    }
    watch.report(state);
}

} // namespace

int main(int argc, char* argv[])
{
    const QCoreApplication application(argc, argv);
    if (!historyDatabase().isEmpty()) {
        for (const auto& [name, function] :
             {std::pair{"onlineBackup", &onlineBackup},
              std::pair{"reference: plain copy", &referencePlainCopy}}) {
            benchmark::RegisterBenchmark(name, function)
                ->Iterations(1)
                ->UseRealTime()
                ->Unit(benchmark::kMillisecond);
        }
    }
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return EXIT_SUCCESS;
}
