// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QElapsedTimer>
#include <QHash>
#include <QIcon>
#include <QSet>
#include <QString>

/// The names and icons that the desktop's own entries give to executables, names in the user's
/// language. The entries are read at the first question, and again when a path is unknown, a
/// directory of entries has changed, and a minute has passed since. Thread: main.
class DesktopEntries
{
public:
    /// The display name of the application at `path`; without an entry the file's name.
    QString name(const QString& path);

    /// Its icon; without one, the theme's icon for programs, which may be null.
    QIcon icon(const QString& path);

private:
    /// How well an entry stands for its executable; the highest wins.
    enum class Fit
    {
        Hidden,       ///< Not shown in menus.
        OneOfSeveral, ///< Starts its executable with arguments, as one of a suite's parts does.
        Whole,
    };

    struct Entry
    {
        QString name;
        QString icon; ///< A theme's icon name or a file's path; may be empty.
        Fit fit = Fit::Hidden;
    };

    using Table = QHash<QString, Entry>;

    const Entry* find(const QString& path);
    const Entry* lookUp(const QString& path) const;
    bool haveDirectoriesChanged() const;
    void readAll();
    void readDirectory(const QString& directory, const QString& idPrefix, int depth);
    void readEntry(const QString& file, const QString& id);
    void addByProgram(const QString& exec, Entry entry);
    static void put(Table& table, const QString& key, const Entry& entry);

    Table m_byPath;      ///< By canonical executable.
    Table m_bySandbox;   ///< By the program's name inside a flatpak, or by a snap's directory.
    Table m_byName;      ///< By the name that the entry's windows carry, or by the entry's own.
    Table m_byDirectory; ///< By the executable's directory, unless it is one of many programs.
    QHash<QString, qint64> m_directories; ///< Directories of entries, and when each last changed.
    QSet<QString> m_ids; ///< Already read: the user's directories come before the system's.
    QElapsedTimer m_readAt;
};
