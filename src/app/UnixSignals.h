// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>

#include <array>

class QSocketNotifier;

/// Turns SIGTERM, SIGINT and SIGHUP into a Qt signal on the main thread, since next to nothing may
/// be called from a signal handler. One instance; thread: main.
class UnixSignals : public QObject
{
    Q_OBJECT

public:
    /// Takes over the three signals, and ignores SIGPIPE: a log reader that goes away must not end
    /// the client.
    explicit UnixSignals(QObject* parent = nullptr);

    /// Gives the signals their default action back.
    ~UnixSignals() override;

Q_SIGNALS:
    void terminationRequested();

private:
    void drain();

    std::array<int, 2> m_pipe{-1, -1}; ///< Read end, write end.
    QSocketNotifier* m_notifier = nullptr;
};
