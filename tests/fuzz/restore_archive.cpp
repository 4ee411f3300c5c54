// SPDX-License-Identifier: GPL-3.0-or-later
// Takes arbitrary bytes for an archive to restore the database from. Whatever they are, no more is
// written than allowed, nothing outside of the target, and what is unpacked is only ever read.
#include "storage/DatabaseArchive.h"
#include "storage/RestoreCheck.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <cstdint>
#include <cstdlib>

namespace {

constexpr qint64 MostBytes = Q_INT64_C(1) << 20;

QString memoryDirectory()
{
    const QString memory = QStringLiteral("/dev/shm");
    return (QFileInfo(memory).isWritable() ? memory : QDir::tempPath()) +
           QStringLiteral("/tallyvane-fuzz-XXXXXX");
}

void check(bool holds)
{
    if (!holds) {
        std::abort();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static int argc = 1;
    static char name[] = "fuzz";
    static char* argv[] = {name, nullptr};
    static const QCoreApplication application(argc, argv);
    static const QTemporaryDir directory(memoryDirectory());
    static const QString archive = directory.filePath(QStringLiteral("archive"));
    static const QString target = directory.filePath(QStringLiteral("unpacked"));

    QFile file(archive);
    check(file.open(QIODevice::WriteOnly));
    check(file.write(reinterpret_cast<const char*>(data), static_cast<qint64>(size)) ==
          static_cast<qint64>(size));
    file.close();
    const auto goOn = [](qint64 done, qint64 total) {
        check(done <= total && total <= MostBytes);
        return true;
    };
    const bool unpacked = DatabaseArchive::unpack(archive, target, MostBytes, goOn) ==
                          DatabaseArchive::Unpacked::Done;
    check(QFileInfo::exists(target) == unpacked);
    if (unpacked) {
        check(QFileInfo(target).size() <= MostBytes);
        const std::atomic<bool> abandoned = false;
        (void)RestoreCheck::run(target, abandoned);
    }
    QFile::remove(target);
    check(
        QDir(directory.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot) ==
        QStringList(QStringLiteral("archive")));
    return 0;
}
