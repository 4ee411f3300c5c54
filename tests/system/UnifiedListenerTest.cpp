// SPDX-License-Identifier: GPL-3.0-or-later
#include "InputLog.h"
#include "InputPipe.h"
#include "support/TestRegistry.h"
#include "system/UnifiedListener.h"

#include <QPointer>
#include <QTemporaryDir>
#include <QTest>

#include <pthread.h>

#include <csignal>

class UnifiedListenerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void signalsWhatHappens();
    void readsWhateverTheLength();
    void dropsShortReads();
    void readsMoreThanOneReadHolds();
    void stopsWhileItWaits();
    void stopsBetweenTwoRecords();
    void endsQuietlyAtTheEndOfTheFile();
    void reportsADeviceThatFails();
    void opensWithoutWaiting();
    void saysWhyItCouldNotOpen();
    void survivesASignal();
    void reportsLostEventsOnce();
    void logsKeysAtTraceOnly_data();
    void logsKeysAtTraceOnly();

private:
    QString path() const { return m_directory->filePath(QStringLiteral("event0")); }

    /// Reads `bytes` to their end with a listener and returns what it signalled, as text.
    QStringList signalled(const QByteArray& bytes, int* pixels = nullptr) const;

    std::unique_ptr<QTemporaryDir> m_directory;
};

namespace {

/// A listener, ended and freed at the end unless it has freed itself.
class Listener final
{
public:
    explicit Listener(const QString& path)
        : m_listener(new UnifiedListener(path, true, true))
    {
    }

    Listener(const Listener&) = delete;
    Listener& operator=(const Listener&) = delete;

    ~Listener()
    {
        const std::unique_ptr<UnifiedListener> owned(m_listener);
        if (owned) {
            owned->stop();
            owned->wait();
        }
    }

    UnifiedListener* get() const { return m_listener; }

    UnifiedListener* operator->() const { return m_listener; }

private:
    QPointer<UnifiedListener> m_listener;
};

/// The keys released on a device, as they arrive on the main thread.
class ReleasedKeys final : public QObject
{
public:
    explicit ReleasedKeys(const Listener& listener)
    {
        connect(listener.get(), &UnifiedListener::keyUp, this,
                [this](Qt::Key key) { keys << key; });
    }

    QList<Qt::Key> keys;
};

} // namespace

void UnifiedListenerTest::init()
{
    m_directory = std::make_unique<QTemporaryDir>();
}

QStringList UnifiedListenerTest::signalled(const QByteArray& bytes, int* pixels) const
{
    const QString fifo = m_directory->filePath(QStringLiteral("one"));
    InputPipe pipe(fifo);
    const Listener listener(fifo);
    QStringList texts;
    const auto add = [&texts](const char* name, int value) {
        texts.append(QStringLiteral("%1 %2").arg(QLatin1String(name)).arg(value, 0, 16));
    };
    // Straight from the reading thread, which has ended when they are looked at.
    const auto direct = Qt::DirectConnection;
    UnifiedListener* const source = listener.get();
    connect(
        source, &UnifiedListener::keyDown, source, [&](Qt::Key k) { add("down", k); }, direct);
    connect(
        source, &UnifiedListener::keyUp, source, [&](Qt::Key k) { add("up", k); }, direct);
    connect(
        source, &UnifiedListener::mouseButtonDown, source,
        [&](unsigned short b) { add("press", b); }, direct);
    connect(
        source, &UnifiedListener::mouseButtonUp, source,
        [&](unsigned short b) { add("release", b); }, direct);
    connect(
        source, &UnifiedListener::mouseScrollDown, source, [&] { add("scroll", 2); }, direct);
    connect(
        source, &UnifiedListener::mouseScrollUp, source, [&] { add("scroll", 1); }, direct);
    connect(
        source, &UnifiedListener::mouseScrollLeft, source, [&] { add("scroll", 3); }, direct);
    connect(
        source, &UnifiedListener::mouseScrollRight, source, [&] { add("scroll", 4); }, direct);
    if (!bytes.isEmpty() && !pipe.write(bytes)) {
        return {QStringLiteral("could not write")};
    }
    listener->start();
    pipe.remove();
    listener->wait();
    if (pixels != nullptr) {
        *pixels = listener->takeMouseMovedPixels();
    }
    return texts;
}

void UnifiedListenerTest::signalsWhatHappens()
{
    int pixels = 0;
    const QStringList texts =
        signalled(bytesOf({makeRecord(EV_KEY, KEY_A, 1), makeRecord(EV_KEY, KEY_A, 2),
                           makeRecord(EV_KEY, KEY_A, 2), makeRecord(EV_KEY, KEY_A, 0),
                           makeRecord(EV_KEY, KEY_GRAVE, 0), makeRecord(EV_KEY, BTN_SIDE, 1),
                           makeRecord(EV_KEY, BTN_SIDE, 0), makeRecord(EV_REL, REL_X, 3),
                           makeRecord(EV_REL, REL_X, -3), makeRecord(EV_REL, REL_WHEEL, -1),
                           makeRecord(EV_REL, REL_WHEEL, 1), makeRecord(EV_REL, REL_HWHEEL, 1),
                           makeRecord(EV_REL, REL_HWHEEL, -1)}),
                  &pixels);
    QCOMPARE(texts.join(QStringLiteral(", ")),
             QStringLiteral("down 41, up 41, up 1ffffff, press 63, release 63, scroll 2, scroll 1, "
                            "scroll 3, scroll 4"));
    QCOMPARE(pixels, 6);
}

void UnifiedListenerTest::readsWhateverTheLength()
{
    const QByteArray all = bytesOf(
        {makeRecord(EV_KEY, KEY_A, 0), makeRecord(EV_KEY, KEY_B, 0), makeRecord(EV_KEY, KEY_C, 0)});
    const QStringList letters{QStringLiteral("up 41"), QStringLiteral("up 42"),
                              QStringLiteral("up 43")};
    for (qsizetype length = 0; length <= all.size(); ++length) {
        const auto whole = length / static_cast<qsizetype>(sizeof(input_event));
        QCOMPARE(signalled(all.left(length)), letters.mid(0, whole));
    }
}

void UnifiedListenerTest::dropsShortReads()
{
    const InputPipe pipe(path());
    const Listener listener(path());
    const ReleasedKeys released(listener);
    listener->start();
    QVERIFY(pipe.tap({KEY_A}));
    QTRY_COMPARE(released.keys.size(), 1);
    QVERIFY(pipe.write(bytesOf({makeRecord(EV_KEY, KEY_B, 0)}).left(10)));
    QTest::qWait(50); // Until the ten bytes have surely been read on their own.
    QVERIFY(pipe.tap({KEY_C}));
    QTRY_COMPARE(released.keys, QList<Qt::Key>({Qt::Key_A, Qt::Key_C}));
}

void UnifiedListenerTest::readsMoreThanOneReadHolds()
{
    QList<input_event> records;
    QStringList expected;
    constexpr int keys = 1000;
    for (int i = 0; i < keys; ++i) {
        const bool even = i % 2 == 0;
        records.append(makeRecord(EV_KEY, even ? KEY_A : KEY_B, 0));
        expected.append(even ? QStringLiteral("up 41") : QStringLiteral("up 42"));
    }
    QCOMPARE(signalled(bytesOf(records)), expected);
}

void UnifiedListenerTest::stopsWhileItWaits()
{
    const InputPipe pipe(path());
    const Listener listener(path());
    listener->start();
    QVERIFY(!listener->wait(50));
    listener->stop();
    QVERIFY(listener->wait());
}

void UnifiedListenerTest::stopsBetweenTwoRecords()
{
    const InputPipe pipe(path());
    const Listener listener(path());
    int ups = 0;
    connect(
        listener.get(), &UnifiedListener::keyUp, listener.get(),
        [&] {
            ++ups;
            listener->stop();
        },
        Qt::DirectConnection);
    QVERIFY(pipe.tap({KEY_A, KEY_B, KEY_C}));
    listener->start();
    QVERIFY(listener->wait());
    QCOMPARE(ups, 1);
}

void UnifiedListenerTest::endsQuietlyAtTheEndOfTheFile()
{
    const InputLog log;
    InputPipe pipe(path());
    const Listener listener(path());
    QStringList removals;
    const QObject receiver;
    connect(listener.get(), &UnifiedListener::deviceRemoved, &receiver,
            [&removals](const QString& path) { removals.append(path); });
    listener->start();
    pipe.close();
    QVERIFY(listener->wait());
    QCoreApplication::sendPostedEvents(nullptr, QEvent::MetaCall);
    QVERIFY(removals.isEmpty());
    QVERIFY(!log.contains(QStringLiteral("Bad read")));
}

void UnifiedListenerTest::reportsADeviceThatFails()
{
    const InputLog log;
    // A directory opens like a device and fails at the first read.
    const Listener listener(m_directory->path());
    QStringList removals;
    const QObject receiver;
    connect(listener.get(), &UnifiedListener::deviceRemoved, &receiver,
            [&removals](const QString& path) { removals.append(path); });
    listener->start();
    QTRY_COMPARE(removals, QStringList(m_directory->path()));
    QVERIFY(log.contains(QStringLiteral("error Bad read from device! error: Is a directory")));
}

void UnifiedListenerTest::opensWithoutWaiting()
{
    mkfifo(QFile::encodeName(path()).constData(), S_IRUSR | S_IWUSR);
    const Listener listener(path()); // No one has it open for writing.
    QVERIFY(!listener->openFailed());
    listener->start();
    QVERIFY(!listener->wait(50));
    InputPipe pipe(path());
    const ReleasedKeys released(listener);
    QVERIFY(pipe.tap({KEY_A}));
    QTRY_COMPARE(released.keys.size(), 1);
}

void UnifiedListenerTest::saysWhyItCouldNotOpen()
{
    const InputLog log;
    const UnifiedListener listener(path(), true, true);
    QVERIFY(listener.openFailed());
    QCOMPARE(
        log.count(QStringLiteral("error Couldn't open device %1! error: No such file or directory")
                      .arg(path())),
        1);
    QCOMPARE(log.count(QStringLiteral("error Make sure you have permission to read that file.")),
             1);
}

void UnifiedListenerTest::survivesASignal()
{
    const InputPipe pipe(path());
    const Listener listener(path());
    struct sigaction action = {};
    struct sigaction before = {};
    action.sa_handler = [](int) {};
    sigaction(SIGUSR1, &action, &before);
    std::atomic<pthread_t> thread = 0;
    connect(
        listener.get(), &UnifiedListener::keyDown, listener.get(),
        [&thread] { thread = pthread_self(); }, Qt::DirectConnection);
    const ReleasedKeys released(listener);
    listener->start();
    QVERIFY(pipe.tap({KEY_A}));
    QTRY_COMPARE(released.keys.size(), 1);
    pthread_kill(thread, SIGUSR1);
    QVERIFY(!listener->wait(50));
    QVERIFY(pipe.tap({KEY_B}));
    QTRY_COMPARE(released.keys.size(), 2);
    sigaction(SIGUSR1, &before, nullptr);
}

void UnifiedListenerTest::reportsLostEventsOnce()
{
    const InputLog log;
    const auto lost = makeRecord(EV_SYN, SYN_DROPPED, 0);
    signalled(bytesOf({lost, lost, makeRecord(EV_KEY, KEY_A, 0), lost}));
    const QString warning = QStringLiteral("The kernel dropped events of");
    QCOMPARE(log.count(warning), 2); // The first at once, the others when the device ends.
    QVERIFY(log.contains(QStringLiteral("times: 1\n")));
    QVERIFY(log.contains(QStringLiteral("times: 2\n")));
}

void UnifiedListenerTest::logsKeysAtTraceOnly_data()
{
    QTest::addColumn<Log::Level>("level");
    QTest::addColumn<int>("lines");
    QTest::newRow("trace") << Log::Level::Trace << 1;
    QTest::newRow("debug") << Log::Level::Debug << 0;
}

void UnifiedListenerTest::logsKeysAtTraceOnly()
{
    QFETCH(Log::Level, level);
    QFETCH(int, lines);
    const InputLog log(level);
    const qint64 second = 1'000'000;
    signalled(bytesOf(
        {makeRecord(EV_KEY, KEY_A, 0), makeRecord(EV_KEY, KEY_HOME, 1),
         makeRecord(EV_KEY, KEY_LEFT, 1, second), makeRecord(EV_KEY, KEY_LEFT, 1, second + 100'000),
         makeRecord(EV_KEY, KEY_RIGHT, 1, second),
         makeRecord(EV_KEY, KEY_RIGHT, 1, second + 100'000), makeRecord(EV_KEY, BTN_RIGHT, 2)}));
    for (const char* line :
         {"key down: 30 translated: A", "key down: 102 translated: Home",
          "ignoring fake-looking 'left' key press", "ignoring fake-looking 'right' key press",
          "code >= BTN_LEFT && code <= BTN_TASK - Event type: 1, event code: 273, translated: 1"}) {
        QCOMPARE(log.count(QStringLiteral("trace %1\n").arg(QLatin1String(line))), lines);
    }
}

REGISTER_TEST(UnifiedListenerTest);
#include "UnifiedListenerTest.moc"
