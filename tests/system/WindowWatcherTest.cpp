// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/TestRegistry.h"
#include "system/InputLog.h"
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

    Window open()
    {
        const Window window = XCreateSimpleWindow(m_display, root(), 0, 0, 100, 100, 0, 0, 0);
        XMapWindow(m_display, window);
        return window;
    }

    void close(Window window)
    {
        XDestroyWindow(m_display, window);
        XSync(m_display, False);
    }

    Atom atom(const char* name) const { return XInternAtom(m_display, name, False); }

    void set(Window window, const char* property, Atom type, const std::vector<long>& values)
    {
        XChangeProperty(m_display, window, atom(property), type, 32, PropModeReplace,
                        reinterpret_cast<const unsigned char*>(values.data()),
                        static_cast<int>(values.size()));
        XSync(m_display, False);
    }

    void setBytes(Window window, const char* property, Atom type, const QByteArray& bytes)
    {
        XChangeProperty(m_display, window, atom(property), type, 8, PropModeReplace,
                        reinterpret_cast<const unsigned char*>(bytes.constData()),
                        static_cast<int>(bytes.size()));
        XSync(m_display, False);
    }

    bool has(Window window, const char* property) const
    {
        Atom type = None;
        int format = 0;
        unsigned long count = 0;
        unsigned long left = 0;
        unsigned char* data = nullptr;
        XGetWindowProperty(m_display, window, atom(property), 0, 1, False, AnyPropertyType, &type,
                           &format, &count, &left, &data);
        XFree(data);
        return type != None;
    }

    void addState(Window window, const char* state)
    {
        constexpr long add = 1;
        ask(window, "_NET_WM_STATE", {add, toLong(atom(state))});
    }

    /// As a pager does.
    void bringToFront(Window window)
    {
        constexpr long pager = 2;
        ask(window, "_NET_ACTIVE_WINDOW", {pager, CurrentTime});
    }

private:
    /// Sends the window manager a wish that concerns a window.
    void ask(Window window, const char* wish, std::array<long, 2> values)
    {
        XEvent event{};
        event.xclient.type = ClientMessage;
        event.xclient.window = window;
        event.xclient.message_type = atom(wish);
        event.xclient.format = 32;
        std::copy(values.begin(), values.end(), std::begin(event.xclient.data.l));
        XSendEvent(m_display, root(), False, SubstructureRedirectMask | SubstructureNotifyMask,
                   &event);
        XSync(m_display, False);
    }

    Display* m_display;
};

/// A window manager on the display in `DISPLAY`.
class WindowManager
{
public:
    ~WindowManager()
    {
        m_process.kill();
        m_process.waitForFinished();
    }

    /// True once it brings new windows to the front. Those that come while it starts it may
    /// overlook, so it is shown one after the other.
    bool start()
    {
        constexpr int mostTries = 100;
        m_process.setStandardErrorFile(QProcess::nullDevice());
        m_process.start(QStringLiteral("openbox"), {QStringLiteral("--sm-disable")});
        Client client;
        bool isReady = false;
        for (int i = 0; i < mostTries && !isReady; ++i) {
            const Window window = client.open();
            isReady = QTest::qWaitFor(
                [&client] { return client.has(client.root(), "_NET_ACTIVE_WINDOW"); }, 200);
            client.close(window);
        }
        return isReady;
    }

private:
    QProcess m_process;
};

} // namespace

class WindowWatcherTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void seesTheApplicationInFront();
    void seesARealProgram();
    void seesFullScreen();
    void leavesOutDesktopAndPanels_data();
    void leavesOutDesktopAndPanels();
    void survivesOddProperties_data();
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
    for (const char* program : {"Xvfb", "openbox", "xterm"}) {
        if (QStandardPaths::findExecutable(QLatin1String(program)).isEmpty()) {
            QSKIP("needs Xvfb, openbox and xterm");
        }
    }
}

void WindowWatcherTest::seesTheApplicationInFront()
{
    VirtualDisplay display;
    WindowWatcher watcher(m_processes);
    QCOMPARE(watcher.activeApplicationPath(), QString()); // Nobody manages windows yet.
    WindowManager windowManager;
    QVERIFY(windowManager.start());
    Client client;
    const Window window = client.open();
    client.set(window, "_NET_WM_PID", XA_CARDINAL, {m_pid});
    QTRY_COMPARE(watcher.applicationPaths(), QStringList{m_self});
    client.bringToFront(window);
    QTRY_COMPARE(watcher.activeApplicationPath(), m_self);
    QVERIFY(!watcher.isFullscreenWindowActive());
    client.set(client.open(), "_NET_WM_PID", XA_CARDINAL, {m_pid});
    client.close(window);
    QTRY_COMPARE(watcher.activeApplicationPath(), m_self);
    QCOMPARE(watcher.applicationPaths(), QStringList{m_self}); // Two windows, one application.
}

void WindowWatcherTest::seesARealProgram()
{
    VirtualDisplay display;
    WindowManager windowManager;
    QVERIFY(windowManager.start());
    WindowWatcher watcher(m_processes);
    QProcess terminal;
    terminal.start(QStringLiteral("xterm"), {QStringLiteral("-e"), QStringLiteral("sleep 60")});
    const QString path =
        QFileInfo(QStandardPaths::findExecutable(QStringLiteral("xterm"))).canonicalFilePath();
    QTRY_COMPARE_WITH_TIMEOUT(watcher.activeApplicationPath(), path, 20'000);
    QCOMPARE(watcher.applicationPaths(), QStringList{path});
    terminal.kill();
    terminal.waitForFinished();
    QTRY_COMPARE(watcher.activeApplicationPath(), QString());
    QTRY_COMPARE(watcher.applicationPaths(), QStringList());
}

void WindowWatcherTest::seesFullScreen()
{
    VirtualDisplay display;
    WindowManager windowManager;
    QVERIFY(windowManager.start());
    Client client;
    const Window window = client.open();
    client.set(window, "_NET_WM_PID", XA_CARDINAL, {m_pid});
    WindowWatcher watcher(m_processes);
    QTRY_COMPARE(watcher.applicationPaths(), QStringList{m_self});
    client.bringToFront(window);
    QTRY_COMPARE(watcher.activeApplicationPath(), m_self);
    client.addState(window, "_NET_WM_STATE_ABOVE");
    client.addState(window, "_NET_WM_STATE_FULLSCREEN");
    QTRY_VERIFY(watcher.isFullscreenWindowActive());
}

void WindowWatcherTest::leavesOutDesktopAndPanels_data()
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

void WindowWatcherTest::leavesOutDesktopAndPanels()
{
    QFETCH(QByteArrayList, types);
    QFETCH(bool, counts);
    const VirtualDisplay display;
    Client client;
    const Window window = client.open();
    client.set(window, "_NET_WM_PID", XA_CARDINAL, {m_pid});
    std::vector<long> atoms;
    for (const QByteArray& type : types) {
        atoms.push_back(toLong(client.atom(type.constData())));
    }
    client.set(window, "_NET_WM_WINDOW_TYPE", XA_ATOM, atoms);
    client.set(client.root(), "_NET_ACTIVE_WINDOW", XA_WINDOW, {toLong(window)});
    client.set(client.root(), "_NET_CLIENT_LIST", XA_WINDOW, {toLong(window)});
    client.set(window, "_NET_WM_STATE", XA_ATOM, {toLong(client.atom("_NET_WM_STATE_FULLSCREEN"))});
    WindowWatcher watcher(m_processes);
    QCOMPARE(watcher.activeApplicationPath(), counts ? m_self : QString());
    QCOMPARE(watcher.applicationPaths(), counts ? QStringList{m_self} : QStringList());
    QCOMPARE(watcher.isFullscreenWindowActive(), counts);
}

void WindowWatcherTest::survivesOddProperties_data()
{
    QTest::addColumn<QByteArray>("property");
    QTest::addColumn<quint64>("type");
    QTest::addColumn<QByteArray>("bytes");
    for (const char* property : {"_NET_ACTIVE_WINDOW", "_NET_CLIENT_LIST", "_NET_WM_PID"}) {
        QTest::addRow("%s, another type", property)
            << QByteArray(property) << quint64{XA_STRING} << QByteArray("12345678");
        QTest::addRow("%s, bytes", property)
            << QByteArray(property) << quint64{XA_WINDOW} << QByteArray("1");
        QTest::addRow("%s, numbers as bytes", property)
            << QByteArray(property) << quint64{XA_CARDINAL} << QByteArray("12345678");
        QTest::addRow("%s, empty", property)
            << QByteArray(property) << quint64{XA_CARDINAL} << QByteArray();
    }
}

void WindowWatcherTest::survivesOddProperties()
{
    QFETCH(QByteArray, property);
    QFETCH(quint64, type);
    QFETCH(QByteArray, bytes);
    const VirtualDisplay display;
    Client client;
    const Window window = client.open();
    client.set(window, "_NET_WM_PID", XA_CARDINAL, {m_pid});
    client.set(client.root(), "_NET_ACTIVE_WINDOW", XA_WINDOW, {toLong(window)});
    client.set(client.root(), "_NET_CLIENT_LIST", XA_WINDOW, {toLong(window), 0, 0x7fffffff});
    WindowWatcher watcher(m_processes);
    QCOMPARE(watcher.activeApplicationPath(), m_self);
    QCOMPARE(watcher.applicationPaths(), QStringList{m_self});
    const bool ofRoot = property != "_NET_WM_PID";
    client.setBytes(ofRoot ? client.root() : window, property.constData(), type, bytes);
    const bool listOnly = property == "_NET_CLIENT_LIST";
    QCOMPARE(watcher.activeApplicationPath(), listOnly ? m_self : QString());
    QCOMPARE(watcher.applicationPaths(),
             property == "_NET_ACTIVE_WINDOW" ? QStringList{m_self} : QStringList());
}

void WindowWatcherTest::survivesWindowsThatVanish()
{
    const VirtualDisplay display;
    WindowWatcher watcher(m_processes);
    std::atomic<bool> done = false;
    std::jthread other([this, &done] {
        Client client;
        for (int i = 0; i < 400; ++i) {
            const Window window = client.open();
            client.set(window, "_NET_WM_PID", XA_CARDINAL, {m_pid});
            client.set(client.root(), "_NET_ACTIVE_WINDOW", XA_WINDOW, {toLong(window)});
            client.set(client.root(), "_NET_CLIENT_LIST", XA_WINDOW, {toLong(window)});
            client.close(window);
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
    const InputLog log;
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
    const auto showWindow = [this](Client& client) {
        const Window window = client.open();
        client.set(window, "_NET_WM_PID", XA_CARDINAL, {m_pid});
        client.set(client.root(), "_NET_ACTIVE_WINDOW", XA_WINDOW, {toLong(window)});
    };
    {
        Client client;
        showWindow(client);
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
    showWindow(client);
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
    const InputLog log;
    WindowWatcher watcher(m_processes);
    QCOMPARE(watcher.activeApplicationPath(), QString());
    QCOMPARE(watcher.applicationPaths(), QStringList());
    QVERIFY(!watcher.isFullscreenWindowActive());
    QCOMPARE(watcher.activeApplicationPath(), QString());
    QCOMPARE(log.count(QStringLiteral("XOpenDisplay failed!")), 1); // Not at every question.
}

REGISTER_TEST(WindowWatcherTest);
#include "WindowWatcherTest.moc"
