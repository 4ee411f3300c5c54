// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QFile>
#include <QString>
#include <QTemporaryDir>

#include <cstdlib>
#include <memory>

/// The database that TALLYVANE_HISTORY names; empty where it names none.
inline QString historyDatabase()
{
    return qEnvironmentVariable("TALLYVANE_HISTORY");
}

/// A data directory for a benchmark: a new one, or, with TALLYVANE_HISTORY, one with a copy of that
/// database. The copy is made once for the whole program, since it takes seconds.
class DataDirectory
{
public:
    DataDirectory()
        : m_directory(historyDatabase().isEmpty() ? std::make_shared<QTemporaryDir>()
                                                  : directoryWithHistory())
    {
    }

    QString path() const { return m_directory->path(); }

    /// Puts a copy of the history into a directory.
    static void copyHistory(const QString& directory)
    {
        const QString target = directory + QStringLiteral("/tallyvane.db");
        QFile::remove(target);
        if (!QFile::copy(historyDatabase(), target)) {
            std::abort();
        }
    }

private:
    static std::shared_ptr<QTemporaryDir> directoryWithHistory()
    {
        static const auto directory = [] {
            auto made = std::make_shared<QTemporaryDir>();
            copyHistory(made->path());
            return made;
        }();
        return directory;
    }

    std::shared_ptr<QTemporaryDir> m_directory;
};
