// SPDX-License-Identifier: GPL-3.0-or-later
#include "network/ScannedSocket.h"
#include "network/SocketOwners.h"
#include "support/TestFiles.h"
#include "support/TestRegistry.h"
#include "system/FixtureRoot.h"

#include <QRandomGenerator>
#include <QTest>

#include <netinet/in.h>
#include <sys/inotify.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <vector>

namespace {

using Ports = QSet<unsigned short>;
using Owners = QHash<unsigned short, QString>;

constexpr uid_t OrdinaryUser = 1000;

/// A machine with a process list and socket tables, as "/proc" shows them.
class Machine
{
public:
    Machine()
    {
        for (const char* table : {"tcp", "udp", "tcp6", "udp6"}) {
            m_tables[QLatin1String(table)] = "  sl  local_address rem_address   st\n";
        }
        // What no walk may stumble over.
        write(QStringLiteral("proc/7"), "no directory");
        write(QStringLiteral("proc/8/status"), "has no descriptors");
        write(QStringLiteral("proc/9/fd/3"), "no link");
        m_root.link(QStringLiteral("proc/self"), QStringLiteral("9"));
    }

    /// "tcp 8080 1000 77": in that table, a socket on port 8080 of user 1000 with inode 77.
    void addSocket(const QString& text)
    {
        const QStringList words = text.split(u' ');
        const QString line =
            QStringLiteral("   0: 0100007F:%1 00000000:0000 0A 00000000:00000000 00:00000000 "
                           "00000000  %2        0 %3 1 0000000000000000 100 0 0 10 0\n")
                .arg(words.at(1).toInt(), 4, 16, QLatin1Char('0'))
                .arg(words.at(2), words.at(3));
        m_tables[words.at(0)] += line.toUtf8();
        write(QStringLiteral("proc/net/") + words.at(0), m_tables[words.at(0)]);
    }

    /// "42 /usr/bin/web 77 78": process 42 runs that program and holds those sockets.
    /// A tab stands for a space in its path.
    void addProcess(const QString& text)
    {
        const QStringList words = text.split(u' ');
        const QString process = QStringLiteral("proc/%1/").arg(words.at(0));
        m_root.link(process + QStringLiteral("exe"), QString(words.at(1)).replace(u'\t', u' '));
        m_root.link(process + QStringLiteral("fd/0"), QStringLiteral("pipe:[77]"));
        for (qsizetype i = 2; i < words.size(); ++i) { // The first is standard output.
            m_root.link(process + QStringLiteral("fd/%1").arg(i * i - 3),
                        QStringLiteral("socket:[%1]").arg(words.at(i)));
        }
    }

    void removeProcess(int process)
    {
        QDir(m_root.filePath(QStringLiteral("proc/%1").arg(process))).removeRecursively();
    }

    QString root() const { return m_root.path(); }

    QByteArray filePath(const char* relative) const
    {
        return QFile::encodeName(m_root.filePath(QLatin1String(relative)));
    }

private:
    void write(const QString& path, const QByteArray& content)
    {
        if (!m_root.write(path, content)) {
            qFatal("cannot write the fixture");
        }
    }

    FixtureRoot m_root;
    QHash<QString, QByteArray> m_tables;
};

/// "8080 /usr/bin/web", in the order of the texts.
QStringList listed(const Owners& owners)
{
    QStringList lines;
    for (auto owner = owners.cbegin(); owner != owners.cend(); ++owner) {
        lines << QStringLiteral("%1 %2").arg(owner.key()).arg(*owner);
    }
    lines.sort();
    return lines;
}

/// Counts how often directories are opened.
class OpenWatch
{
public:
    OpenWatch()
        : m_queue(inotify_init1(IN_NONBLOCK | IN_CLOEXEC))
    {
    }

    OpenWatch(const OpenWatch&) = delete;
    OpenWatch& operator=(const OpenWatch&) = delete;

    ~OpenWatch() { close(m_queue); }

    void add(const QByteArray& directory) const
    {
        inotify_add_watch(m_queue, directory.constData(), IN_OPEN | IN_ONLYDIR);
    }

    bool takeAny() const
    {
        std::array<char, 4096> events{};
        bool any = false;
        while (read(m_queue, events.data(), events.size()) > 0) {
            any = true;
        }
        return any;
    }

private:
    int m_queue;
};

/// Sockets of a real process of an ordinary user: so many of TCP, of UDP, and of TCP for both IPv6
/// and IPv4. The process ends with the object.
class RealSockets
{
public:
    explicit RealSockets(int ofEachKind)
    {
        std::array<int, 2> ends{};
        if (pipe(ends.data()) != 0) {
            return;
        }
        m_child = fork();
        if (m_child == 0) {
            hold(ofEachKind, ends[1]);
        }
        close(ends[1]);
        unsigned short port = 0;
        while (read(ends[0], &port, sizeof port) == sizeof port) {
            ports.insert(port);
        }
        close(ends[0]);
    }

    RealSockets(const RealSockets&) = delete;
    RealSockets& operator=(const RealSockets&) = delete;

    ~RealSockets()
    {
        kill(m_child, SIGKILL);
        waitpid(m_child, nullptr, 0);
    }

    Ports ports;

private:
    [[noreturn]] static void hold(int ofEachKind, int told)
    {
        if (geteuid() == 0 && setuid(OrdinaryUser) != 0) {
            _exit(1);
        }
        for (int i = 0; i < ofEachKind; ++i) {
            open(AF_INET, SOCK_STREAM, told);
            open(AF_INET, SOCK_DGRAM, told);
            open(AF_INET6, SOCK_STREAM, told);
        }
        close(told);
        while (true) {
            pause();
        }
    }

    static void open(int family, int type, int told)
    {
        sockaddr_in6 address{};
        address.sin6_family = static_cast<sa_family_t>(family);
        socklen_t size = family == AF_INET ? sizeof(sockaddr_in) : sizeof address;
        auto* const any = reinterpret_cast<sockaddr*>(&address);
        const int descriptor = socket(family, type, 0);
        if (bind(descriptor, any, size) == 0 &&
            (type == SOCK_DGRAM || listen(descriptor, 1) == 0) &&
            getsockname(descriptor, any, &size) == 0) {
            const unsigned short port = ntohs(address.sin6_port); // at the same place in IPv4's
            (void)write(told, &port, sizeof port);
        }
    }

    pid_t m_child = -1;
};

} // namespace

class SocketOwnersTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readsLinesAsTheCLibraryDoes();
    void finds_data();
    void finds();
    void findsRealSockets();
    void followsSocketsThatMove();
    void looksNoFurtherThanItMust();
};

void SocketOwnersTest::readsLinesAsTheCLibraryDoes()
{
    QByteArray text =
        "   1: 0000000000000000FFFF00000100007F:A3E6 0000000000000000FFFF00000100007F:01BB 01 "
        "00000000:00000000 02:000004A6 00000000   501        0 4294967296 2 0000 20 4 31 10 -1\n";
    QCOMPARE(SocketTable::parse(text.toStdString())->inode, quint64{1} << 32);
    for (const char* table : {"tcp", "udp", "tcp6", "udp6"}) {
        text += readFile(QStringLiteral("/proc/net/") + QLatin1String(table));
    }
    constexpr std::string_view letters("0123456789aAfFgG:+- \t");
    QRandomGenerator random(501);
    for (const QByteArray& line : text.split('\n')) {
        for (qsizetype length = 0; length <= line.size(); ++length) {
            const std::string cut = line.first(length).toStdString();
            QVERIFY2(SocketTable::parse(cut) == scannedSocket(cut), cut.c_str());
            std::string changed = line.toStdString();
            for (int i = 0; i < 3 && !changed.empty(); ++i) {
                changed.at(random.bounded(quint32(changed.size()))) =
                    letters.at(random.bounded(quint32(letters.size())));
            }
            QVERIFY2(SocketTable::parse(changed) == scannedSocket(changed), changed.c_str());
        }
    }
}

void SocketOwnersTest::finds_data()
{
    QTest::addColumn<QStringList>("sockets");
    QTest::addColumn<QStringList>("processes");
    QTest::addColumn<QStringList>("owners"); // of the ports 80, 443 and 65535
    const QStringList web{QStringLiteral("42 /usr/bin/web 77 78")};
    const QStringList webOn80{QStringLiteral("80 /usr/bin/web")};
    const QString tcp80 = QStringLiteral("tcp 80 1000 77");

    QTest::newRow("TCP and UDP") << QStringList{tcp80, QStringLiteral("udp 65535 1000 78")} << web
                                 << (QStringList{QStringLiteral("65535 /usr/bin/web")} + webOn80);
    QTest::newRow("a port not wanted")
        << QStringList{QStringLiteral("tcp 81 1000 77")} << web << QStringList();
    QTest::newRow("the last user left out")
        << QStringList{QStringLiteral("tcp 80 500 77")} << web << QStringList();
    QTest::newRow("the first user counted")
        << QStringList{QStringLiteral("tcp 80 501 77")} << web << webOn80;
    QTest::newRow("held by no process")
        << QStringList{QStringLiteral("tcp 80 1000 0")}
        << QStringList{QStringLiteral("42 /usr/bin/web 0")} << QStringList();
    QTest::newRow("held by none that may be looked into")
        << QStringList{QStringLiteral("tcp 80 1000 79")} << web << QStringList();
    QTest::newRow("in the table of IPv6 only")
        << QStringList{QStringLiteral("tcp6 80 1000 77"), QStringLiteral("udp6 443 1000 78")} << web
        << (QStringList{QStringLiteral("443 /usr/bin/web")} + webOn80);
    QTest::newRow("IPv6 where the owner in IPv4 cannot be told")
        << QStringList{QStringLiteral("tcp 80 1000 79"), QStringLiteral("tcp6 80 1000 77")} << web
        << webOn80;
    QTest::newRow("IPv4 before IPv6") // though that descriptor is looked at first
        << QStringList{tcp80, QStringLiteral("tcp6 80 1000 90")}
        << (QStringList{QStringLiteral("12 /usr/bin/other 89 90")} + web) << webOn80;
    QTest::newRow("one socket in two processes")
        << QStringList{tcp80} << (web + QStringList{QStringLiteral("43 /usr/bin/web 77")})
        << webOn80;
    QTest::newRow("an executable replaced meanwhile")
        << QStringList{tcp80} << QStringList{QStringLiteral("42 /nowhere/web\t(deleted) 77")}
        << QStringList{QStringLiteral("80 /nowhere/web")};
    QTest::newRow("a process that just ended")
        << QStringList{tcp80} << QStringList() << QStringList();
}

void SocketOwnersTest::finds()
{
    QFETCH(QStringList, sockets);
    QFETCH(QStringList, processes);
    Machine machine;
    for (const QString& socket : sockets) {
        machine.addSocket(socket);
    }
    for (const QString& process : processes) {
        machine.addProcess(process);
    }
    SocketOwners owners(machine.root());
    const Ports ports{80, 443, 65535};
    QTEST(listed(owners.find(ports)), "owners");
    QTEST(listed(owners.find(ports)), "owners"); // and no differently when asked again
}

void SocketOwnersTest::findsRealSockets()
{
    constexpr int ofEachKind = 100; // The tables do not fit into one page of memory.
    if (geteuid() != 0 && geteuid() < 501) {
        QSKIP("needs a user id of 501 or more, or root");
    }
    const RealSockets sockets(ofEachKind);
    QVERIFY(sockets.ports.size() > ofEachKind);
    SocketOwners owners(QStringLiteral("/"));
    const Owners found = owners.find(sockets.ports);
    QCOMPARE(found.size(), sockets.ports.size());
    for (const QString& path : found) {
        QCOMPARE(path, QCoreApplication::applicationFilePath());
    }
}

void SocketOwnersTest::followsSocketsThatMove()
{
    Machine machine;
    machine.addSocket(QStringLiteral("tcp 80 1000 77"));
    machine.addProcess(QStringLiteral("42 /usr/bin/web 77"));
    SocketOwners owners(machine.root());
    QCOMPARE(owners.find({80}), (Owners{{80, QStringLiteral("/usr/bin/web")}}));

    // The process id and the descriptor now stand for something else.
    machine.removeProcess(42);
    machine.addProcess(QStringLiteral("42 /usr/bin/other 78"));
    machine.addProcess(QStringLiteral("43 /usr/bin/successor 77"));
    machine.addSocket(QStringLiteral("tcp 81 1000 78"));
    QCOMPARE(owners.find({80, 81}), (Owners{{80, QStringLiteral("/usr/bin/successor")},
                                            {81, QStringLiteral("/usr/bin/other")}}));
    machine.removeProcess(43);
    QCOMPARE(owners.find({80}), Owners());
}

void SocketOwnersTest::looksNoFurtherThanItMust()
{
    Machine machine;
    machine.addSocket(QStringLiteral("tcp 80 1000 77"));
    machine.addSocket(QStringLiteral("tcp 81 1000 78"));
    machine.addProcess(QStringLiteral("42 /usr/bin/web 77 78"));
    machine.addProcess(QStringLiteral("43 /usr/bin/other 90"));
    const OpenWatch processes;
    processes.add(machine.filePath("proc"));
    SocketOwners owners(machine.root());
    owners.find({});
    owners.find({443});
    QVERIFY(!processes.takeAny());
    owners.find({80});
    QVERIFY(processes.takeAny());

    const OpenWatch known;
    known.add(machine.filePath("proc/42/fd"));
    const OpenWatch unknown;
    unknown.add(machine.filePath("proc/43/fd"));
    QCOMPARE(owners.find({80}).size(), 1);
    QVERIFY(!known.takeAny()); // Asked only whether the descriptor is still that socket.
    QCOMPARE(owners.find({80, 81}).size(), 2);
    QVERIFY(known.takeAny());
    QVERIFY(!unknown.takeAny());
}

REGISTER_TEST(SocketOwnersTest);
#include "SocketOwnersTest.moc"
