// SPDX-License-Identifier: GPL-3.0-or-later
#include "InputPipe.h"
#include "support/LogCapture.h"
#include "support/TestRegistry.h"
#include "system/UnifiedListener.h"

#include <QPointer>
#include <QTemporaryDir>
#include <QTest>

#include <limits>

class UnifiedListenerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void readsWhateverTheLength();
    void dropsShortReads();
    void readsMoreThanOneReadHolds();
    void survivesHostileRecords();
    void stopsBetweenTwoRecords();
    void saysWhyItCouldNotOpen();
    void reportsLostEventsOnce();
    void logsKeysAtTraceOnly_data();
    void logsKeysAtTraceOnly();

private:
    QString path() const { return m_directory->filePath(QStringLiteral("event0")); }

    /// Reads `bytes` to their end with a listener and returns the keys that were released.
    QList<Qt::Key> released(const QByteArray& bytes) const;

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

} // namespace

void UnifiedListenerTest::init()
{
    m_directory = std::make_unique<QTemporaryDir>();
}

QList<Qt::Key> UnifiedListenerTest::released(const QByteArray& bytes) const
{
    InputPipe pipe(path());
    const Listener listener(path());
    QList<Qt::Key> keys;
    // Straight from the reading thread, which has ended when they are looked at.
    connect(
        listener.get(), &UnifiedListener::keyUp, listener.get(),
        [&keys](Qt::Key key) { keys << key; }, Qt::DirectConnection);
    if (!bytes.isEmpty() && !pipe.write(bytes)) {
        return {};
    }
    listener->start();
    pipe.remove();
    listener->wait();
    return keys;
}

void UnifiedListenerTest::readsWhateverTheLength()
{
    const QByteArray all = bytesOf(
        {makeRecord(EV_KEY, KEY_A, 0), makeRecord(EV_KEY, KEY_B, 0), makeRecord(EV_KEY, KEY_C, 0)});
    const QList<Qt::Key> letters{Qt::Key_A, Qt::Key_B, Qt::Key_C};
    for (qsizetype length = 0; length <= all.size(); ++length) {
        const auto whole = length / static_cast<qsizetype>(sizeof(input_event));
        QCOMPARE(released(all.left(length)), letters.mid(0, whole));
    }
}

void UnifiedListenerTest::dropsShortReads()
{
    const InputPipe pipe(path());
    const Listener listener(path());
    QList<Qt::Key> keys;
    QObject receiver;
    connect(listener.get(), &UnifiedListener::keyUp, &receiver,
            [&keys](Qt::Key key) { keys << key; });
    listener->start();
    QVERIFY(pipe.tap({KEY_A}));
    QTRY_COMPARE(keys.size(), 1);
    QVERIFY(pipe.write(bytesOf({makeRecord(EV_KEY, KEY_B, 0)}).left(10)));
    QTest::qWait(50); // Until the ten bytes have surely been read on their own.
    QVERIFY(pipe.tap({KEY_C}));
    QTRY_COMPARE(keys, QList<Qt::Key>({Qt::Key_A, Qt::Key_C}));
}

void UnifiedListenerTest::readsMoreThanOneReadHolds()
{
    constexpr int keys = 1000;
    QList<input_event> records(keys, makeRecord(EV_KEY, KEY_A, 0));
    records.append(makeRecord(EV_KEY, KEY_B, 0));
    QList<Qt::Key> expected(keys, Qt::Key_A);
    expected.append(Qt::Key_B);
    QCOMPARE(released(bytesOf(records)), expected);
}

void UnifiedListenerTest::survivesHostileRecords()
{
    constexpr int lowest = std::numeric_limits<int>::min();
    constexpr int highest = std::numeric_limits<int>::max();
    QList<input_event> records;
    for (int type = 0; type <= EV_MAX + 1; ++type) {
        for (const int code : {0, 1, 6, 8, 30, 105, 255, 256, 0x110, 0x117, 0xffff}) {
            for (const int value : {lowest, -1, 2, 3, highest, lowest}) {
                records.append(makeRecord(type, code, value, std::numeric_limits<qint64>::max()));
            }
        }
    }
    records.append(makeRecord(EV_KEY, KEY_A, 0));
    QCOMPARE(released(bytesOf(records)), QList<Qt::Key>{Qt::Key_A});
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

void UnifiedListenerTest::saysWhyItCouldNotOpen()
{
    const LogCapture log;
    const UnifiedListener listener(path(), true, true);
    QVERIFY(listener.openFailed());
    QCOMPARE(
        log.count(QStringLiteral("error Couldn't open device %1! error: No such file or directory")
                      .arg(path())),
        1);
    QCOMPARE(log.count(QStringLiteral("error Make sure you have permission to read that file.")),
             1);
}

void UnifiedListenerTest::reportsLostEventsOnce()
{
    const LogCapture log;
    const auto lost = makeRecord(EV_SYN, SYN_DROPPED, 0);
    released(bytesOf({lost, lost, makeRecord(EV_KEY, KEY_A, 0), lost}));
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
    const LogCapture log(level);
    const qint64 second = 1'000'000;
    released(bytesOf(
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
