// SPDX-License-Identifier: GPL-3.0-or-later
#include "system/DesktopEntries.h"

#include "system/ExecLine.h"

#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>

#include <gio/gdesktopappinfo.h>

#include <chrono>
#include <memory>

namespace {

using namespace std::chrono_literals;

constexpr std::chrono::milliseconds LookAgainAfter = 1min;
constexpr int DeepestDirectory = 3; ///< Below one of the places; links may lead in circles.

const QString FlatpakKey = QStringLiteral("flatpak:");
const QString SnapKey = QStringLiteral("snap:");

/// Links to one launcher, named as the snaps.
const QString SnapPrograms = QStringLiteral("/snap/bin/");

using AppInfo = std::unique_ptr<GDesktopAppInfo, decltype(&g_object_unref)>;

AppInfo loadEntry(const QString& file)
{
    return {g_desktop_app_info_new_from_filename(QFile::encodeName(file).constData()),
            g_object_unref};
}

QString stringOf(GDesktopAppInfo* info, const char* key)
{
    const std::unique_ptr<char, decltype(&g_free)> value(g_desktop_app_info_get_string(info, key),
                                                         g_free);
    return QString::fromUtf8(value.get());
}

/// The executable that `program` leads to, links followed; empty where there is none.
QString canonicalProgram(const QString& program)
{
    const QString path =
        QDir::isAbsolutePath(program) ? program : QStandardPaths::findExecutable(program);
    return path.isEmpty() ? QString() : QFileInfo(path).canonicalFilePath();
}

/// Directories in which programs of all kinds lie side by side.
bool isShared(const QString& directory)
{
    return directory.endsWith(QStringLiteral("/bin")) ||
           directory.endsWith(QStringLiteral("/sbin")) ||
           directory.endsWith(QStringLiteral("/games")) || directory.count(QLatin1Char('/')) < 3;
}

/// The last part of an entry's id, such as "org.kde.kate".
QString lastPart(const QString& id)
{
    return id.section(QLatin1Char('.'), -1);
}

/// The key of the sandbox that a path leads into; empty for a path on the machine itself.
QString sandboxKey(const QString& path)
{
    if (path.startsWith(QStringLiteral("/app/"))) {
        return FlatpakKey + QFileInfo(path).fileName();
    }
    for (const QString& root : {QStringLiteral("/snap/"), QStringLiteral("/var/lib/snapd/snap/")}) {
        if (path.startsWith(root)) {
            return SnapKey + path.mid(root.size()).section(QLatin1Char('/'), 0, 0);
        }
    }
    return {};
}

qint64 changeTime(const QString& directory)
{
    return QFileInfo(directory).lastModified().toMSecsSinceEpoch();
}

} // namespace

QString DesktopEntries::name(const QString& path)
{
    const Entry* entry = find(path);
    return entry && !entry->name.isEmpty() ? entry->name : QFileInfo(path).fileName();
}

QIcon DesktopEntries::icon(const QString& path)
{
    QIcon program = QIcon::fromTheme(QStringLiteral("application-x-executable"));
    const Entry* entry = find(path);
    if (!entry || entry->icon.isEmpty()) {
        return program;
    }
    if (QDir::isAbsolutePath(entry->icon)) {
        return QFileInfo(entry->icon).isReadable() ? QIcon(entry->icon) : program;
    }
    return QIcon::fromTheme(entry->icon, program);
}

const DesktopEntries::Entry* DesktopEntries::find(const QString& path)
{
    if (path.isEmpty()) {
        return nullptr;
    }
    if (!m_readAt.isValid()) {
        readAll();
    }
    const Entry* entry = lookUp(path);
    if (!entry && m_readAt.hasExpired(LookAgainAfter.count()) && haveDirectoriesChanged()) {
        readAll();
        entry = lookUp(path);
    }
    return entry;
}

const DesktopEntries::Entry* DesktopEntries::lookUp(const QString& path) const
{
    const QFileInfo file(path);
    const std::pair<const Table*, QString> places[] = {{&m_byPath, path},
                                                       {&m_bySandbox, sandboxKey(path)},
                                                       {&m_byName, file.fileName().toLower()},
                                                       {&m_byDirectory, file.path()}};
    for (const auto& [table, key] : places) {
        const auto found = table->constFind(key);
        if (!key.isEmpty() && found != table->constEnd()) {
            return &*found;
        }
    }
    return nullptr;
}

bool DesktopEntries::haveDirectoriesChanged() const
{
    for (auto directory = m_directories.begin(); directory != m_directories.end(); ++directory) {
        if (changeTime(directory.key()) != directory.value()) {
            return true;
        }
    }
    return false;
}

void DesktopEntries::readAll()
{
    for (Table* table : {&m_byPath, &m_bySandbox, &m_byName, &m_byDirectory}) {
        table->clear();
    }
    m_directories.clear();
    m_ids.clear();
    for (const QString& directory :
         QStandardPaths::standardLocations(QStandardPaths::ApplicationsLocation)) {
        readDirectory(directory, {}, 0);
    }
    m_readAt.start();
}

void DesktopEntries::readDirectory(const QString& directory, const QString& idPrefix, int depth)
{
    m_directories.insert(directory, changeTime(directory));
    const QDir content(directory);
    for (const QFileInfo& file :
         content.entryInfoList({QStringLiteral("*.desktop")}, QDir::Files)) {
        readEntry(file.filePath(), idPrefix + file.completeBaseName());
    }
    if (depth >= DeepestDirectory) {
        return;
    }
    for (const QFileInfo& inner : content.entryInfoList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        readDirectory(inner.filePath(), idPrefix + inner.fileName() + QLatin1Char('-'), depth + 1);
    }
}

void DesktopEntries::readEntry(const QString& file, const QString& id)
{
    if (m_ids.contains(id)) {
        return;
    }
    m_ids.insert(id);
    const AppInfo info = loadEntry(file); // Null for hidden ones and where the program is missing.
    if (!info) {
        return;
    }
    Entry entry;
    entry.name = QString::fromUtf8(g_app_info_get_name(G_APP_INFO(info.get())));
    entry.icon = stringOf(info.get(), G_KEY_FILE_DESKTOP_KEY_ICON);
    entry.fit = g_desktop_app_info_get_nodisplay(info.get()) ? Fit::Hidden : Fit::Whole;
    const QString exec = QString::fromUtf8(g_app_info_get_commandline(G_APP_INFO(info.get())));
    addByProgram(exec, entry);
    put(m_byName, lastPart(id).toLower(), entry);
    put(m_byName, stringOf(info.get(), G_KEY_FILE_DESKTOP_KEY_STARTUP_WM_CLASS).toLower(), entry);
}

void DesktopEntries::addByProgram(const QString& exec, Entry entry)
{
    const ExecLine::Program program = ExecLine::program(ExecLine::words(exec));
    if (program.name.isEmpty()) {
        return;
    }
    if (program.isSandboxed) {
        put(m_bySandbox, FlatpakKey + program.name, entry);
        return;
    }
    if (program.name.startsWith(SnapPrograms)) {
        const QString snap = program.name.mid(SnapPrograms.size()).section(QLatin1Char('.'), 0, 0);
        put(m_bySandbox, SnapKey + snap, entry);
        return;
    }
    if (program.hasArguments && entry.fit == Fit::Whole) {
        entry.fit = Fit::OneOfSeveral;
    }
    const QString path = canonicalProgram(program.name);
    const QString directory = QFileInfo(path).path();
    put(m_byPath, path, entry);
    put(m_byName, QFileInfo(program.name).fileName().toLower(), entry);
    if (!isShared(directory)) {
        put(m_byDirectory, directory, entry);
    }
}

void DesktopEntries::put(Table& table, const QString& key, const Entry& entry)
{
    const auto present = table.constFind(key);
    if (!key.isEmpty() && (present == table.constEnd() || present->fit < entry.fit)) {
        table.insert(key, entry);
    }
}
