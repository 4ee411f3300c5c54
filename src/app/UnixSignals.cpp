// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/UnixSignals.h"

#include "base/Log.h"

#include <QSocketNotifier>

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstring>

namespace {

constexpr std::array TerminationSignals{SIGTERM, SIGINT, SIGHUP};

/// The write end of the pipe, for the handler. Written only while the signals have their default
/// action.
volatile std::sig_atomic_t s_pipe = -1;

extern "C" void noteSignal(int)
{
    const int savedErrno = errno;
    const char byte = 1;
    // A full pipe already holds a request.
    [[maybe_unused]] const ssize_t written = write(static_cast<int>(s_pipe), &byte, 1);
    errno = savedErrno;
}

void setAction(int number, void (*handler)(int))
{
    struct sigaction action = {};
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART;
    sigemptyset(&action.sa_mask);
    sigaction(number, &action, nullptr);
}

} // namespace

UnixSignals::UnixSignals(QObject* parent)
    : QObject(parent)
{
    if (pipe2(m_pipe.data(), O_CLOEXEC | O_NONBLOCK) != 0) {
        Log::error("Cannot watch for the signals that end the client: {}", std::strerror(errno));
        return;
    }
    s_pipe = m_pipe[1];
    m_notifier = new QSocketNotifier(m_pipe[0], QSocketNotifier::Read, this);
    connect(m_notifier, &QSocketNotifier::activated, this, &UnixSignals::drain);
    for (const int number : TerminationSignals) {
        setAction(number, &noteSignal);
    }
    setAction(SIGPIPE, SIG_IGN);
}

UnixSignals::~UnixSignals()
{
    for (const int number : TerminationSignals) {
        setAction(number, SIG_DFL);
    }
    for (const int descriptor : m_pipe) {
        if (descriptor >= 0) {
            close(descriptor);
        }
    }
}

void UnixSignals::drain()
{
    std::array<char, 16> bytes{};
    while (read(m_pipe[0], bytes.data(), bytes.size()) > 0) {
    }
    Q_EMIT terminationRequested();
}
