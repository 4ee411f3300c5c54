// SPDX-License-Identifier: GPL-3.0-or-later
#include "InputPipe.h"
#include "support/LogCapture.h"
#include "support/TestRegistry.h"
#include "system/AbstractSystemListener.h"
#include "system/InputThread.h"

#include <QCursor>
#include <QDir>
#include <QGuiApplication>
#include <QScopeGuard>
#include <QScreen>
#include <QTemporaryDir>
#include <QTest>

#include <unistd.h>

#include <map>

class InputThreadTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void collectsUntilTaken();
    void tellsTheReceiver();
    void readsNoOtherNodes();
    void stopsWithoutLossAndStartsAgain();
    void forgetsADeviceThatEnded();
    void saysWhenADeviceFails();
    void readsANodeThatComesBack();
    void readsANodeThatReplacedAnother();
    void waitsForTheDirectory();
    void readsANodeOnceItMay();
    void leavesNothingBehind();

private:
    QString path(const QString& name) const { return m_directory->filePath(name); }

    QString path(int device) const { return path(QStringLiteral("event%1").arg(device)); }

    /// Takes keys until there are `count`, or until it has taken far too long.
    QList<Qt::Key> takeKeys(int count);

    std::unique_ptr<QTemporaryDir> m_directory;
    std::unique_ptr<InputThread> m_input;
    AbstractSystemListener* m_receiver = nullptr;
};

namespace {

class ActivityLog final : public AbstractSystemListener
{
public:
    void onKeyDown() override { lines.append(QStringLiteral("key down")); }

    void onKeyUp() override { lines.append(QStringLiteral("key up")); }

    void onMouseButtonDown() override { lines.append(QStringLiteral("button down")); }

    void onMouseButtonUp() override { lines.append(QStringLiteral("button up")); }

    QStringList lines;
};

/// How many threads and descriptors this process has.
std::pair<qsizetype, qsizetype> resources()
{
    const auto entries = [](const QString& directory) {
        return QDir(directory)
            .entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot)
            .size();
    };
    return {entries(QStringLiteral("/proc/self/task")), entries(QStringLiteral("/proc/self/fd"))};
}

} // namespace

void InputThreadTest::init()
{
    m_directory = std::make_unique<QTemporaryDir>();
    m_receiver = nullptr;
    m_input = std::make_unique<InputThread>([this] { return m_receiver; }, m_directory->path());
}

void InputThreadTest::cleanup()
{
    m_input.reset();
}

QList<Qt::Key> InputThreadTest::takeKeys(int count)
{
    QList<Qt::Key> keys;
    (void)QTest::qWaitFor([&] {
        keys += m_input->takeKeyPresses();
        return keys.size() >= count;
    });
    return keys;
}

void InputThreadTest::collectsUntilTaken()
{
    const InputPipe keyboard(path(0));
    const InputPipe mouse(path(1));
    m_input->start();
    QVERIFY(keyboard.tap({KEY_A, KEY_GRAVE, KEY_KP7}));
    QCOMPARE(takeKeys(3), QList<Qt::Key>({Qt::Key_A, Qt::Key_unknown, Qt::Key(0x0100125e)}));
    QVERIFY(m_input->takeKeyPresses().isEmpty());

    const QSize screen = QGuiApplication::primaryScreen()->size();
    QCursor::setPos(screen.width() / 2, screen.height() / 4);
    const auto wheel = [&mouse](int code, int value, int steps) {
        return mouse.write(QList<input_event>(steps, makeRecord(EV_REL, code, value)));
    };
    QVERIFY(wheel(REL_WHEEL, 1, 4) && wheel(REL_WHEEL, -1, 3));
    QVERIFY(wheel(REL_HWHEEL, 1, 2) && wheel(REL_HWHEEL, -1, 1));
    QVERIFY(mouse.write({makeRecord(EV_REL, REL_X, 100), makeRecord(EV_REL, REL_X, 300),
                         makeRecord(EV_KEY, BTN_RIGHT, 0), makeRecord(EV_KEY, BTN_TASK, 0)}));
    QList<unsigned short> clicks;
    QTRY_COMPARE((clicks += m_input->takeMouseClicks()).size(), 2);
    QCOMPARE(clicks, QList<unsigned short>({1, 99}));
    QCOMPARE(m_input->takeMousePoints(), QList<QPointF>({{0.5, 0.25}, {0.5, 0.25}}));
    QCOMPARE(m_input->takeMouseScrollsUp(), 4);
    QCOMPARE(m_input->takeMouseScrollsDown(), 3);
    QCOMPARE(m_input->takeMouseScrollsLeft(), 2);
    QCOMPARE(m_input->takeMouseScrollsRight(), 1);
    QCOMPARE(m_input->takeMouseDistancePixels(), 200);

    QVERIFY(m_input->takeMousePoints().isEmpty());
    QCOMPARE(m_input->takeMouseScrollsUp() + m_input->takeMouseScrollsDown() +
                 m_input->takeMouseScrollsLeft() + m_input->takeMouseScrollsRight() +
                 m_input->takeMouseDistancePixels(),
             0);
}

void InputThreadTest::tellsTheReceiver()
{
    ActivityLog activity;
    const InputPipe device(path(0));
    m_input->start();
    m_receiver = &activity;
    QVERIFY(device.write({makeRecord(EV_KEY, KEY_A, 1), makeRecord(EV_KEY, KEY_A, 2),
                          makeRecord(EV_KEY, KEY_A, 0), makeRecord(EV_REL, REL_WHEEL, 1),
                          makeRecord(EV_KEY, BTN_LEFT, 1), makeRecord(EV_KEY, BTN_LEFT, 0)}));
    QTRY_COMPARE(activity.lines.join(QStringLiteral(", ")),
                 QStringLiteral("key down, key up, button down, button up"));
}

void InputThreadTest::readsNoOtherNodes()
{
    const InputPipe mice(path(QStringLiteral("mice")));
    const InputPipe upperCase(path(QStringLiteral("Event1")));
    const LogCapture log;
    m_input->start();
    QVERIFY(!m_input->hasListeners());
    QVERIFY(
        log.contains(QStringLiteral("info No input devices (/dev/input/*) found! Tallyvane cannot "
                                    "count your keys/clicks.\n")));
    const InputPipe device(path(QStringLiteral("event12")));
    QTRY_VERIFY(m_input->hasListeners());
    QVERIFY(mice.tap({KEY_A}) && upperCase.tap({KEY_B}) && device.tap({KEY_C}));
    QCOMPARE(takeKeys(1), QList<Qt::Key>({Qt::Key_C}));
}

void InputThreadTest::stopsWithoutLossAndStartsAgain()
{
    ActivityLog activity;
    m_receiver = &activity;
    const InputPipe device(path(0));
    m_input->start();
    QVERIFY(device.write({makeRecord(EV_REL, REL_X, 1), makeRecord(EV_REL, REL_X, 8)}));
    QVERIFY(device.tap({KEY_A, KEY_B}));
    QThread::msleep(100); // The thread reads; no event loop delivers what it signals.
    QVERIFY(activity.lines.isEmpty());
    m_input->stop();
    QVERIFY(!m_input->hasListeners());
    QCOMPARE(m_input->takeKeyPresses(), QList<Qt::Key>({Qt::Key_A, Qt::Key_B}));
    QCOMPARE(m_input->takeMouseDistancePixels(), 7);

    m_input->stop();
    m_input->start();
    m_input->start();
    QVERIFY(device.tap({KEY_C}));
    QCOMPARE(takeKeys(1), QList<Qt::Key>({Qt::Key_C}));
}

void InputThreadTest::forgetsADeviceThatEnded()
{
    const LogCapture log;
    InputPipe device(path(0));
    m_input->start();
    QVERIFY(device.write({makeRecord(EV_REL, REL_X, 1), makeRecord(EV_REL, REL_X, 8)}));
    device.close();
    QTRY_VERIFY(!m_input->hasListeners());
    QVERIFY(!log.contains(QStringLiteral("Removing device listener")));
    QCOMPARE(m_input->takeMouseDistancePixels(), 7);
}

void InputThreadTest::saysWhenADeviceFails()
{
    const LogCapture log;
    const InputPipe other(path(1));
    QVERIFY(QDir().mkdir(path(0))); // Opens like a device and fails at the first read.
    m_input->start();
    QTRY_VERIFY(
        log.contains(QStringLiteral("info Removing device listener for %1\n").arg(path(0))));
    QVERIFY(log.contains(QStringLiteral("error Bad read from device! error: Is a directory\n")));
    QVERIFY(other.tap({KEY_A}));
    QCOMPARE(takeKeys(1).size(), 1);
    // The node itself stayed: opening it over and over would lead nowhere.
    QCOMPARE(log.count(QStringLiteral("Creating device listener for %1\n").arg(path(0))), 1);
    m_input->stop();
    QCOMPARE(log.count(QStringLiteral("info Closing device listener for")), 1);
}

void InputThreadTest::readsANodeThatComesBack()
{
    m_input->start();
    for (int time = 0; time < 3; ++time) {
        InputPipe device(path(0));
        QTRY_VERIFY(m_input->hasListeners());
        QVERIFY(device.tap({KEY_A}));
        QCOMPARE(takeKeys(1).size(), 1);
        device.remove();
        QTRY_VERIFY(!m_input->hasListeners());
    }
}

void InputThreadTest::readsANodeThatReplacedAnother()
{
    InputPipe former(path(0));
    m_input->start();
    QFile::remove(path(0));
    const InputPipe latter(path(0));
    QTest::qWait(50); // The directory's change is seen while the former is still being read.
    former.close();
    QVERIFY(latter.tap({KEY_A}));
    QCOMPARE(takeKeys(1).size(), 1);
}

void InputThreadTest::waitsForTheDirectory()
{
    const QString directory = path(QStringLiteral("input"));
    m_input = std::make_unique<InputThread>([] { return nullptr; }, directory);
    m_input->start();
    for (int time = 0; time < 2; ++time) {
        QVERIFY(QDir().mkdir(directory));
        InputPipe device(directory + QStringLiteral("/event0"));
        QTRY_VERIFY(m_input->hasListeners());
        QVERIFY(device.tap({KEY_A}));
        QCOMPARE(takeKeys(1).size(), 1);
        device.remove();
        QVERIFY(QDir().rmdir(directory));
        QTRY_VERIFY(!m_input->hasListeners());
    }
}

void InputThreadTest::readsANodeOnceItMay()
{
    const LogCapture log;
    QCOMPARE(chmod(QFile::encodeName(m_directory->path()).constData(), 0777), 0);
    // No mode keeps root from reading.
    const uid_t user = geteuid();
    constexpr uid_t nobody = 65534;
    QVERIFY(user != 0 || seteuid(nobody) == 0);
    const auto restoreUser = qScopeGuard([user] { (void)seteuid(user); });
    const InputPipe device(path(0));
    const QByteArray node = QFile::encodeName(path(0));
    QCOMPARE(chmod(node.constData(), 0), 0);
    m_input->start();
    QVERIFY(!m_input->hasListeners());

    // A change that does not suffice is no news, and neither are other nodes that come and go.
    QCOMPARE(chmod(node.constData(), S_IWUSR), 0);
    InputPipe other(path(1));
    QTRY_VERIFY(m_input->hasListeners());
    other.remove();
    QTRY_VERIFY(!m_input->hasListeners());
    QCOMPARE(
        log.count(QStringLiteral("Couldn't open device %1! error: Permission denied").arg(path(0))),
        1);
    QCOMPARE(log.count(QStringLiteral("Creating device listener for %1\n").arg(path(0))), 1);

    QCOMPARE(chmod(node.constData(), S_IRUSR), 0);
    QTRY_VERIFY(m_input->hasListeners());
    QVERIFY(device.tap({KEY_A}));
    QCOMPARE(takeKeys(1).size(), 1);
}

void InputThreadTest::leavesNothingBehind()
{
    m_input->start();
    m_input->stop();
    const auto before = resources();
    m_input->start();
    constexpr int devices = 30;
    constexpr int bursts = 10;
    for (int burst = 0; burst < bursts; ++burst) {
        std::map<int, InputPipe> pipes;
        for (int device = 0; device < devices; ++device) {
            pipes.emplace(device, InputPipe(path(device)));
        }
        // In every second burst all of them are gone before their listeners have finished.
        if (burst % 2 == 0) {
            for (const auto& [device, pipe] : pipes) {
                QVERIFY(pipe.tap({KEY_A}));
            }
            QCOMPARE(takeKeys(devices).size(), devices);
        } else {
            QCoreApplication::processEvents();
        }
        for (auto& [device, pipe] : pipes) {
            pipe.remove();
        }
    }
    QTRY_VERIFY(!m_input->hasListeners());
    m_input->stop();
    // A joined thread is listed until the kernel has taken it down.
    QTRY_COMPARE(resources(), before);
}

REGISTER_TEST(InputThreadTest);
#include "InputThreadTest.moc"
