// SPDX-License-Identifier: GPL-3.0-or-later
// Reads the machine's input devices and prints, line by line, what was counted, until standard
// input ends. Each line on standard input is answered with the threads and descriptors in use.
#include "base/Log.h"
#include "system/InputThread.h"

#include <QDir>
#include <QGuiApplication>
#include <QScreen>
#include <QSocketNotifier>
#include <QTemporaryDir>
#include <QTimer>

#include <unistd.h>

#include <array>
#include <cstdio>

namespace {

void print(const QString& line)
{
    std::puts(qPrintable(line));
    std::fflush(stdout);
}

void printIfAny(const char* what, int number)
{
    if (number != 0) {
        print(QStringLiteral("%1 %2").arg(QLatin1String(what)).arg(number));
    }
}

void printTaken(InputThread& input)
{
    for (const Qt::Key key : input.takeKeyPresses()) {
        print(QStringLiteral("key %1").arg(static_cast<int>(key), 0, 16));
    }
    for (const unsigned short button : input.takeMouseClicks()) {
        print(QStringLiteral("click %1").arg(button));
    }
    printIfAny("up", input.takeMouseScrollsUp());
    printIfAny("down", input.takeMouseScrollsDown());
    printIfAny("left", input.takeMouseScrollsLeft());
    printIfAny("right", input.takeMouseScrollsRight());
    printIfAny("travel", input.takeMouseDistancePixels());
}

qsizetype entries(const QString& directory)
{
    return QDir(directory).entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot).size();
}

/// Returns false at the end of the input.
bool answer()
{
    std::array<char, 256> request{};
    if (read(STDIN_FILENO, request.data(), request.size()) <= 0) {
        return false;
    }
    print(QStringLiteral("resources %1 %2")
              .arg(entries(QStringLiteral("/proc/self/task")))
              .arg(entries(QStringLiteral("/proc/self/fd"))));
    return true;
}

} // namespace

int main(int argc, char** argv)
{
    const QGuiApplication application(argc, argv);
    const QTemporaryDir directory;
    Log::start(directory.path());
    const QSize screen = QGuiApplication::primaryScreen()->size();
    print(QStringLiteral("screen %1 %2").arg(screen.width()).arg(screen.height()));

    InputThread input([] { return nullptr; });
    input.start();
    print(input.hasListeners() ? QStringLiteral("reading") : QStringLiteral("nothing to read"));

    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, &input, [&input] { printTaken(input); });
    constexpr int takeEveryMilliseconds = 50;
    timer.start(takeEveryMilliseconds);
    QSocketNotifier requests(STDIN_FILENO, QSocketNotifier::Read);
    QObject::connect(&requests, &QSocketNotifier::activated, &input, [] {
        if (!answer()) {
            QCoreApplication::quit();
        }
    });
    QCoreApplication::exec();
    input.stop();
    printTaken(input);
    Log::stop();
}
