// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/LogCapture.h"
#include "support/TestRegistry.h"
#include "system/ProcessInfo.h"
#include "system/WindowWatcher.h"

#include <QCoreApplication>
#include <QProcess>
#include <QStandardPaths>
#include <QTest>

#include <X11/Xatom.h>
#include <X11/Xlib.h>

#include <array>
#include <atomic>
#include <thread>

namespace {

using namespace std::chrono_literals;

/// A display of its own for one test, on a number that was free. `DISPLAY` names it while it lives.
class VirtualDisplay
{
public:
    explicit VirtualDisplay(const QString& number = {})
    {
        QStringList arguments{QStringLiteral("-displayfd"), QStringLiteral("1"),
                              QStringLiteral("-screen"),    QStringLiteral("0"),
                              QStringLiteral("800x600x24"), QStringLiteral("-noreset"),
                              QStringLiteral("-nolisten"),  QStringLiteral("tcp")};
        if (!number.isEmpty()) {
            arguments.prepend(number);
        }
        m_server.setStandardErrorFile(QProcess::nullDevice());
        m_server.start(QStringLiteral("Xvfb"), arguments);
        if (m_server.waitForStarted() && m_server.waitForReadyRead()) {
            m_name = QStringLiteral(":") + QString::fromLatin1(m_server.readLine().trimmed());
        }
        qputenv("DISPLAY", m_name.toLatin1());
    }

    ~VirtualDisplay()
    {
        stop();
        qunsetenv("DISPLAY");
    }

    QString name() const { return m_name; }

    void stop()
    {
        m_server.kill();
        m_server.waitForFinished();
    }

private:
    QProcess m_server;
    QString m_name;
};

long toLong(unsigned long value)
{
    return static_cast<long>(value);
}

/// Another client of the display, with windows that carry whatever a test wants.
class Client
{
public:
    Client()
        : m_display(XOpenDisplay(nullptr))
    {
    }

    Client(const Client&) = delete;
    Client& operator=(const Client&) = delete;

    ~Client() { XCloseDisplay(m_display); }

    Window root() const { return DefaultRootWindow(m_display); }

    void close(Window window)
    {
        XDestroyWindow(m_display, window);
        XSync(m_display, False);
    }

    Atom atom(const char* name) const { return XInternAtom(m_display, name, False); }

    void set(Window window, const char* property, Atom type, const std::vector<long>& values)
    {
        constexpr int format = 32;
        setRaw(window, property, type, format, values.data(), values.size());
    }

    void setBytes(Window window, const char* property, Atom type, const QByteArray& bytes)
    {
        constexpr int format = 8;
        setRaw(window, property, type, format, bytes.constData(),
               static_cast<size_t>(bytes.size()));
    }

    /// Opens a window of the process and has it stand in front, as a window manager would.
    Window openInFront(long process)
    {
        const Window window = XCreateSimpleWindow(m_display, root(), 0, 0, 100, 100, 0, 0, 0);
        XMapWindow(m_display, window);
        set(window, "_NET_WM_PID", XA_CARDINAL, {process});
        set(root(), "_NET_ACTIVE_WINDOW", XA_WINDOW, {toLong(window)});
        set(root(), "_NET_CLIENT_LIST", XA_WINDOW, {toLong(window)});
        return window;
    }

private:
    void setRaw(Window window, const char* property, Atom type, int format, const void* data,
                size_t count)
    {
        XChangeProperty(m_display, window, atom(property), type, format, PropModeReplace,
                        static_cast<const unsigned char*>(data), static_cast<int>(count));
        XSync(m_display, False);
    }

    Display* m_display;
};

} // namespace

class WindowWatcherTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void seesWhatIsInFront_data();
    void seesWhatIsInFront();
    void survivesOddProperties();
    void survivesWindowsThatVanish();
    void survivesTheDisplay();
    void givesErrorsOfOthersBack();
    void doesWithoutADisplay();

private:
    const ProcessInfo m_processes{QStringLiteral("/")};
    const QString m_self = QCoreApplication::applicationFilePath();
    const long m_pid = static_cast<long>(QCoreApplication::applicationPid());
};

void WindowWatcherTest::initTestCase()
{
    if (QStandardPaths::findExecutable(QStringLiteral("Xvfb")).isEmpty()) {
        QSKIP("needs Xvfb");
    }
}

void WindowWatcherTest::seesWhatIsInFront_data()
{
    QTest::addColumn<QByteArrayList>("types");
    QTest::addColumn<bool>("counts");
    QTest::newRow("desktop") << QByteArrayList{"_NET_WM_WINDOW_TYPE_DESKTOP"} << false;
    QTest::newRow("panel") << QByteArrayList{"_NET_WM_WINDOW_TYPE_DOCK"} << false;
    QTest::newRow("panel of one desktop")
        << QByteArrayList{"_KDE_X", "_NET_WM_WINDOW_TYPE_DOCK"} << false;
    QTest::newRow("dialog") << QByteArrayList{"_NET_WM_WINDOW_TYPE_DIALOG"} << true;
    QTest::newRow("no value") << QByteArrayList{} << true;
}

void WindowWatcherTest::seesWhatIsInFront()
{
    QFETCH(QByteArrayList, types);
    QFETCH(bool, counts);
    const VirtualDisplay display;
    Client client;
    WindowWatcher watcher(m_processes);
    QCOMPARE(watcher.activeApplicationPath(), QString()); // Nobody manages windows yet.
    const Window window = client.openInFront(m_pid);
    std::vector<long> atoms;
    for (const QByteArray& type : types) {
        atoms.push_back(toLong(client.atom(type.constData())));
    }
    client.set(window, "_NET_WM_WINDOW_TYPE", XA_ATOM, atoms);
    // Two windows, one application.
    client.set(client.root(), "_NET_CLIENT_LIST", XA_WINDOW, {toLong(window), toLong(window)});
    QCOMPARE(watcher.activeApplicationPath(), counts ? m_self : QString());
    QCOMPARE(watcher.applicationPaths(), counts ? QStringList{m_self} : QStringList());
    QVERIFY(!watcher.isFullscreenWindowActive());
    client.set(window, "_NET_WM_STATE", XA_ATOM,
               {toLong(client.atom("_NET_WM_STATE_ABOVE")),
                toLong(client.atom("_NET_WM_STATE_FULLSCREEN"))});
    QCOMPARE(watcher.isFullscreenWindowActive(), counts);
}

void WindowWatcherTest::survivesOddProperties()
{
    const std::pair<Atom, QByteArray> oddities[] = {
        {XA_STRING, "12345678"}, {XA_WINDOW, "1"}, {XA_CARDINAL, "12345678"}, {XA_CARDINAL, ""}};
    const VirtualDisplay display;
    Client client;
    WindowWatcher watcher(m_processes);
    for (const char* property : {"_NET_ACTIVE_WINDOW", "_NET_CLIENT_LIST", "_NET_WM_PID"}) {
        const bool inFront = qstrcmp(property, "_NET_CLIENT_LIST") == 0;
        const bool listed = qstrcmp(property, "_NET_ACTIVE_WINDOW") == 0;
        for (const auto& [type, bytes] : oddities) {
            const Window window = client.openInFront(m_pid);
            client.set(client.root(), "_NET_CLIENT_LIST", XA_WINDOW,
                       {toLong(window), 0, 0x7fffffff});
            QCOMPARE(watcher.activeApplicationPath(), m_self);
            QCOMPARE(watcher.applicationPaths(), QStringList{m_self});
            client.setBytes(inFront || listed ? client.root() : window, property, type, bytes);
            QCOMPARE(watcher.activeApplicationPath(), inFront ? m_self : QString());
            QCOMPARE(watcher.applicationPaths(), listed ? QStringList{m_self} : QStringList());
        }
    }
}

void WindowWatcherTest::survivesWindowsThatVanish()
{
    const VirtualDisplay display;
    WindowWatcher watcher(m_processes);
    std::atomic<bool> done = false;
    std::jthread other([this, &done] {
        Client client;
        for (int i = 0; i < 400; ++i) {
            client.close(client.openInFront(m_pid));
        }
        done = true;
    });
    while (!done) {
        const QString path = watcher.activeApplicationPath();
        QVERIFY(path.isEmpty() || path == m_self);
        watcher.applicationPaths();
        watcher.isFullscreenWindowActive();
    }
    other.join();
    const LogCapture log;
    WindowWatcher late(m_processes);
    QCOMPARE(late.activeApplicationPath(), QString()); // What is named no longer exists.
    QVERIFY(log.contains(QStringLiteral("XGetWindowProperty _NET_WM_PID failed on window 0x")));
    QCOMPARE(watcher.applicationPaths(), QStringList());
}

void WindowWatcherTest::survivesTheDisplay()
{
    auto display = std::make_unique<VirtualDisplay>();
    const QString name = display->name();
    WindowWatcher watcher(m_processes, 0ms);
    {
        Client client;
        client.openInFront(m_pid);
        QCOMPARE(watcher.activeApplicationPath(), m_self);
    }
    display->stop();
    QCOMPARE(watcher.activeApplicationPath(), QString());
    QCOMPARE(watcher.applicationPaths(), QStringList());
    QVERIFY(!watcher.isFullscreenWindowActive());
    display.reset();
    const VirtualDisplay again(name);
    QCOMPARE(again.name(), name);
    Client client;
    client.openInFront(m_pid);
    QTRY_COMPARE(watcher.activeApplicationPath(), m_self);
}

void WindowWatcherTest::givesErrorsOfOthersBack()
{
    const VirtualDisplay display;
    WindowWatcher watcher(m_processes);
    Client client;
    static int errors = 0;
    const auto before = XSetErrorHandler([](Display*, XErrorEvent*) { return ++errors; });
    client.set(client.root(), "_NET_ACTIVE_WINDOW", XA_WINDOW, {0x7fffffff});
    watcher.activeApplicationPath(); // Our own error is ours.
    QCOMPARE(errors, 0);
    client.close(0x7fffffff); // Theirs is theirs.
    QCOMPARE(errors, 1);
    XSetErrorHandler(before);
}

void WindowWatcherTest::doesWithoutADisplay()
{
    qunsetenv("DISPLAY");
    const LogCapture log;
    WindowWatcher watcher(m_processes);
    QCOMPARE(watcher.activeApplicationPath(), QString());
    QCOMPARE(watcher.applicationPaths(), QStringList());
    QVERIFY(!watcher.isFullscreenWindowActive());
    QCOMPARE(watcher.activeApplicationPath(), QString());
    QCOMPARE(log.count(QStringLiteral("XOpenDisplay failed!")), 1); // Not at every question.
}

REGISTER_TEST(WindowWatcherTest);
#include "WindowWatcherTest.moc"
