// SPDX-License-Identifier: GPL-3.0-or-later
// Opens arbitrary bytes as the client's database, upgrades them where they claim to be an old one,
// and reads the tables. One claiming to be of a newer version must stay as it is.
#include "storage/Database.h"

#include "storage/DSqlQuery.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <cstdint>
#include <cstdlib>

namespace {

class NoToAll : public DatabasePrompts
{
public:
    void showFailure(const QString& /*title*/, const QString& /*text*/) override {}

    bool confirmFreshDatabase(const QString& /*text*/) override { return false; }
};

QString memoryDirectory()
{
    const QString memory = QStringLiteral("/dev/shm");
    return (QFileInfo(memory).isWritable() ? memory : QDir::tempPath()) +
           QStringLiteral("/tallyvane-fuzz-XXXXXX");
}

void readTables(Database& database)
{
    for (const char* table : {"settings", "applications", "keypresses", "mousepoints"}) {
        DSqlQuery query(&database, QStringLiteral("SELECT * FROM ") + QLatin1String(table), true);
        while (query.next()) {
            static_cast<void>(query.value(0));
        }
    }
}

void removeFiles(const QString& directory)
{
    QDir files(directory);
    for (const QString& name : files.entryList(QDir::Files)) {
        files.remove(name);
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

    const QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    QFile file(directory.filePath(DatabaseFiles::Name));
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size()) {
        std::abort();
    }
    file.close();
    NoToAll prompts;
    Database::State state = Database::State::Closed;
    {
        Database database(directory.path(), prompts);
        state = database.state();
        if (state == Database::State::Open) {
            readTables(database);
        }
    }
    if (state == Database::State::NewerVersion &&
        (!file.open(QIODevice::ReadOnly) || file.readAll() != bytes)) {
        std::abort();
    }
    file.close();
    removeFiles(directory.path());
    return 0;
}
