// SPDX-License-Identifier: GPL-3.0-or-later
#include "storage/FailingVfs.h"

#include <sqlite3.h>
#include <unistd.h>

#include <map>

namespace {

FailingVfs::Fault s_fault;
int s_writesLeft = 0;
sqlite3_vfs* s_original = nullptr;
sqlite3_vfs s_failing;

/// The tables of functions that SQLite's own files came with, by ours that took their place.
std::map<const sqlite3_io_methods*, const sqlite3_io_methods*> s_originalMethods;
std::map<const sqlite3_io_methods*, sqlite3_io_methods> s_ourMethods;

int write(sqlite3_file* file, const void* data, int size, sqlite3_int64 offset)
{
    if (s_writesLeft-- <= 0) {
        if (s_fault == FailingVfs::Fault::Kill) {
            ::_exit(FailingVfs::KilledExitCode);
        }
        return SQLITE_FULL;
    }
    return s_originalMethods.at(file->pMethods)->xWrite(file, data, size, offset);
}

int sync(sqlite3_file* /*file*/, int /*flags*/)
{
    return SQLITE_OK;
}

int open(sqlite3_vfs* /*vfs*/, const char* name, sqlite3_file* file, int flags, int* outFlags)
{
    const int result = s_original->xOpen(s_original, name, file, flags, outFlags);
    if (result == SQLITE_OK && file->pMethods != nullptr) {
        const auto [ours, isNew] = s_ourMethods.try_emplace(file->pMethods, *file->pMethods);
        if (isNew) {
            ours->second.xWrite = &write;
            ours->second.xSync = &sync;
            ours->second.iVersion = 1; // No shared memory, no mapping around xWrite.
            s_originalMethods[&ours->second] = file->pMethods;
        }
        file->pMethods = &ours->second;
    }
    return result;
}

} // namespace

FailingVfs::FailingVfs(Fault fault, int write)
{
    s_fault = fault;
    s_writesLeft = write;
    s_original = sqlite3_vfs_find(nullptr);
    s_failing = *s_original;
    s_failing.zName = "failing";
    s_failing.xOpen = &open;
    sqlite3_vfs_register(&s_failing, 1);
}

FailingVfs::~FailingVfs()
{
    sqlite3_vfs_unregister(&s_failing);
    sqlite3_vfs_register(s_original, 1);
}

bool FailingVfs::hasStruck() const
{
    return s_writesLeft < 0;
}
