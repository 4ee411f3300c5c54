// SPDX-License-Identifier: GPL-3.0-or-later
#include "system/ProcessInfo.h"

#include "base/ExecutableLink.h"
#include "system/ProcText.h"

#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

#include <cerrno>

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
    const QString link = m_root.filePath(QStringLiteral("proc/%1/exe").arg(processId));
    const QString path = ExecutableLink::target(link, error);
    return error == EACCES || error == EPERM ? programOfCommandLine(processId) : path;
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
