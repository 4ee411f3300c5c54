// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "network/PortDescriptions.h"

#include <QObject>

/// Loads the files that describe ports, so that no window waits for a long one: the default file
/// and the user's own, whose entries win. Thread: made anywhere, then used and destroyed on one.
class thread_networkPortsUpdater final : public QObject // NOLINT(readability-identifier-naming)
{
    Q_OBJECT

public:
    static constexpr qint64 MostBytes = qint64{32} << 20;

    /// Loads the file at `path` in place of the one loaded so far, and says by `loaded` what both
    /// kinds of file hold together. False where it cannot be read: the log says why, and what was
    /// known stays. The user's own file is often not there, which is no failure: it then holds
    /// nothing.
    bool execute(const QString& path, bool isUsersOwn);

Q_SIGNALS:
    void loaded(const QHash<int, QString>& tcp, const QHash<int, QString>& udp);

private:
    void set(PortDescriptions& loadedBefore, const PortDescriptions& descriptions);

    PortDescriptions m_default;
    PortDescriptions m_usersOwn;
};
