// SPDX-License-Identifier: GPL-3.0-or-later
// What one record costs from the read to the queued signal, beside a loop that only reads; and what
// a fast mouse costs.
#include "base/FileDescriptor.h"
#include "system/UnifiedListener.h"

#include <QCoreApplication>
#include <QFile>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <linux/input.h>
#include <sys/stat.h>

#include <array>
#include <ctime>
#include <memory>
#include <thread>
#include <vector>

namespace {

using Records = std::vector<input_event>;

constexpr int RecordsPerRun = 2000; ///< Fits into a pipe.

/// A named pipe that stands for a device, filled and closed again: reading ends after its records.
class FilledPipe final
{
public:
    FilledPipe()
    {
        m_name = QFile::encodeName(path());
        mkfifo(m_name.constData(), S_IRUSR | S_IWUSR);
    }

    QString path() const { return m_directory.filePath(QStringLiteral("event0")); }

    FileDescriptor openToWrite() const
    {
        return FileDescriptor(open(m_name.constData(), O_RDWR | O_CLOEXEC));
    }

private:
    QTemporaryDir m_directory;
    QByteArray m_name;
};

bool writeAll(const FileDescriptor& end, const Records& records)
{
    const size_t size = records.size() * sizeof(input_event);
    return write(end.get(), records.data(), size) == static_cast<ssize_t>(size);
}

input_event record(int type, int code, int value)
{
    input_event event = {};
    event.type = static_cast<quint16>(type);
    event.code = static_cast<quint16>(code);
    event.value = value;
    return event;
}

Records keyReleases()
{
    return Records(RecordsPerRun, record(EV_KEY, KEY_A, 0));
}

double processorSeconds(clockid_t clock)
{
    timespec time = {};
    clock_gettime(clock, &time);
    constexpr double nanosecond = 1e-9;
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * nanosecond;
}

/// The least that any reader of the device has to do: one read for each record, in a thread.
class BareReader final : public QThread
{
public:
    explicit BareReader(const QString& path)
        : m_device(open(QFile::encodeName(path).constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC))
    {
        fcntl(m_device.get(), F_SETFL, O_RDONLY);
    }

protected:
    void run() override
    {
        input_event event = {};
        while (read(m_device.get(), &event, sizeof(event)) == sizeof(event)) {
            benchmark::DoNotOptimize(event);
        }
    }

private:
    FileDescriptor m_device;
};

void setRecordsProcessed(benchmark::State& state)
{
    state.SetItemsProcessed(state.iterations() * RecordsPerRun);
    state.counters["per_record"] =
        benchmark::Counter(static_cast<double>(state.iterations()) * RecordsPerRun,
                           benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

void bareReadLoop(benchmark::State& state)
{
    const Records records = keyReleases();
    for ([[maybe_unused]] const auto& run : state) {
        state.PauseTiming();
        const FilledPipe pipe;
        BareReader reader(pipe.path());
        FileDescriptor end = pipe.openToWrite();
        writeAll(end, records);
        end = FileDescriptor();
        state.ResumeTiming();
        reader.start();
        reader.wait();
    }
    setRecordsProcessed(state);
}

/// `delivered`: whether the time until the receiver has got the signals counts as well.
void readToSignal(benchmark::State& state, bool delivered)
{
    const Records records = keyReleases();
    for ([[maybe_unused]] const auto& run : state) {
        state.PauseTiming();
        const FilledPipe pipe;
        auto listener = std::make_unique<UnifiedListener>(pipe.path(), true, true);
        QObject receiver;
        qint64 keys = 0;
        QObject::connect(listener.get(), &UnifiedListener::keyUp, &receiver, [&keys] { ++keys; });
        FileDescriptor end = pipe.openToWrite();
        writeAll(end, records);
        end = FileDescriptor();
        state.ResumeTiming();
        listener->start();
        listener->wait();
        if (delivered) {
            QCoreApplication::sendPostedEvents(&receiver, QEvent::MetaCall);
        }
        state.PauseTiming();
        QCoreApplication::sendPostedEvents(&receiver, QEvent::MetaCall);
        if (keys != RecordsPerRun) {
            state.SkipWithError("records were lost");
        }
        listener.reset();
        state.ResumeTiming();
    }
    setRecordsProcessed(state);
}

void readToQueuedSignal(benchmark::State& state)
{
    readToSignal(state, false);
}

void readToDeliveredSignal(benchmark::State& state)
{
    readToSignal(state, true);
}

/// Writes motion reports at an even pace for `seconds`, and returns the processor time that took.
double moveMouse(const FileDescriptor& end, int reportsPerSecond, int seconds)
{
    const double before = processorSeconds(CLOCK_THREAD_CPUTIME_ID);
    timespec next = {};
    clock_gettime(CLOCK_MONOTONIC, &next);
    constexpr long second = 1'000'000'000;
    for (int report = 0; report < reportsPerSecond * seconds; ++report) {
        next.tv_nsec += second / reportsPerSecond;
        next.tv_sec += next.tv_nsec / second;
        next.tv_nsec %= second;
        clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &next, nullptr);
        input_event x = record(EV_REL, REL_X, report % 2 + 1);
        x.input_event_sec = next.tv_sec;
        x.input_event_usec = next.tv_nsec / 1000;
        input_event y = x;
        y.code = REL_Y;
        input_event synchronisation = x;
        synchronisation.type = EV_SYN;
        synchronisation.code = SYN_REPORT;
        writeAll(end, {x, y, synchronisation});
    }
    return processorSeconds(CLOCK_THREAD_CPUTIME_ID) - before;
}

void fastMouse(benchmark::State& state)
{
    constexpr int seconds = 4;
    const auto reportsPerSecond = static_cast<int>(state.range(0));
    for ([[maybe_unused]] const auto& run : state) {
        const FilledPipe pipe;
        UnifiedListener listener(pipe.path(), true, true);
        const FileDescriptor end = pipe.openToWrite();
        listener.start();
        const double before = processorSeconds(CLOCK_PROCESS_CPUTIME_ID);
        double writing = 0;
        std::thread hand([&] { writing = moveMouse(end, reportsPerSecond, seconds); });
        hand.join();
        constexpr unsigned long untilAllIsRead = 50;
        QThread::msleep(untilAllIsRead);
        const double used = processorSeconds(CLOCK_PROCESS_CPUTIME_ID) - before - writing;
        constexpr double percent = 100;
        state.counters["core_percent"] = used / seconds * percent;
        listener.stop();
        listener.wait();
        const int travelled = listener.takeMouseMovedPixels();
        if (travelled != 2 * (reportsPerSecond * seconds - 1)) {
            state.SkipWithError("reports were lost");
        }
    }
}

BENCHMARK(bareReadLoop)->UseRealTime();
BENCHMARK(readToQueuedSignal)->UseRealTime();
BENCHMARK(readToDeliveredSignal)->UseRealTime();
BENCHMARK(fastMouse)->Arg(1000)->Arg(8000)->Iterations(1)->UseRealTime()->Unit(benchmark::kSecond);

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}
