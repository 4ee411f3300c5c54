// SPDX-License-Identifier: GPL-3.0-or-later
#include "system/ProcessInfo.h"

#include "system/ProcText.h"

#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

#include <unistd.h>

#include <array>
#include <cerrno>
#include <climits>

ProcessInfo::ProcessInfo(const QString& root)
    : m_root(root)
{
}

QString ProcessInfo::processPath(qint64 processId) const
{
    if (processId <= 0) {
        return {};
    }
    int error = 0;
    const QString path = executableLink(processId, error);
    return error == EACCES || error == EPERM ? programOfCommandLine(processId) : path;
}

QString ProcessInfo::executableLink(qint64 processId, int& error) const
{
    const QString link = m_root.filePath(QStringLiteral("proc/%1/exe").arg(processId));
    std::array<char, PATH_MAX> target{};
    const ssize_t length =
        ::readlink(QFile::encodeName(link).constData(), target.data(), target.size());
    if (length < 0) {
        error = errno;
        return {};
    }
    const QByteArrayView text(target.data(), length);
    const QByteArrayView path = ProcText::withoutDeletedMark(text);
    // A file may really be called so.
    const bool isMark =
        path.size() == text.size() || !QFileInfo::exists(QFile::decodeName(text.toByteArray()));
    return QFile::decodeName((isMark ? path : text).toByteArray());
}

QString ProcessInfo::programOfCommandLine(qint64 processId) const
{
    const QByteArray line =
        ProcText::read(m_root.filePath(QStringLiteral("proc/%1/cmdline").arg(processId)));
    const QString word = QFile::decodeName(ProcText::firstArgument(line).toByteArray());
    if (word.isEmpty()) {
        return {};
    }
    const bool isPath = word.contains(QLatin1Char('/'));
    if (isPath && !word.startsWith(QLatin1Char('/'))) {
        return {}; // Relative to a directory that cannot be read either.
    }
    const QFileInfo program(isPath ? word : QStandardPaths::findExecutable(word));
    return program.isFile() && program.isExecutable() ? program.canonicalFilePath() : QString();
}
