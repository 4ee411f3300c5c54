// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/ExecutableLink.h"

#include <QFile>
#include <QFileInfo>

#include <unistd.h>

#include <array>
#include <cerrno>
#include <climits>

QString ExecutableLink::target(const QString& path, int& error)
{
    constexpr QByteArrayView mark(" (deleted)");
    std::array<char, PATH_MAX> target{};
    const ssize_t length =
        ::readlink(QFile::encodeName(path).constData(), target.data(), target.size());
    if (length < 0) {
        error = errno;
        return {};
    }
    const QByteArrayView text(target.data(), length);
    const QString executable = QFile::decodeName(text.toByteArray());
    // A file may really be called so.
    const bool isMarked = text.endsWith(mark) && !QFileInfo::exists(executable);
    return isMarked ? QFile::decodeName(text.chopped(mark.size()).toByteArray()) : executable;
}
