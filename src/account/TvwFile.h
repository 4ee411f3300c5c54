// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "account/TvwFormat.h"

#include <QByteArray>
#include <QString>

#include <functional>
#include <optional>

/// Answers this machine's id; empty where it has none.
using MachineIdSource = std::function<QByteArray()>;

/// The id in "/etc/machine-id". Where there is none (some containers), it is empty, and the file's
/// key rests on its salt alone: damage is still noticed, but the file can be read on any machine.
QByteArray systemMachineId();

/// The file "tallyvane.tvw" in the data directory; `TvwFormat.h` tells its layout. Thread: main.
///
/// No file that was not understood is ever replaced: a damaged or foreign one is moved aside as
/// "tallyvane.tvw.damaged-yyyyMMdd-HHmmss", and where one cannot be read or moved, it stays and
/// nothing is saved in this run. Each of these is logged, with what it means for the counts.
class TvwFile final
{
public:
    static inline const QString FileName = QStringLiteral("tallyvane.tvw");

    explicit TvwFile(const QString& directory, MachineIdSource machineId = systemMachineId);

    /// What the file holds; nothing where there is no file, or none that could be used.
    std::optional<TvwContent> load();

    /// Writes the file, readable by this user alone, so that at any instant the old or the new one
    /// is there whole; the new one is on the disk once this returns. False, and a log line, where
    /// it could not; always false before `load`.
    bool save(const TvwContent& content);

    bool exists() const;

private:
    void moveAside(const QString& reason);
    std::optional<QByteArray> read();
    bool write(const QByteArray& bytes) const;

    QString m_path;
    MachineIdSource m_machineId;
    QByteArray m_salt;          ///< Empty until a file was loaded or saved.
    bool m_replaceable = false; ///< Whether nothing at `m_path` would be lost by a save.
};
