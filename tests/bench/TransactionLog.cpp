// SPDX-License-Identifier: GPL-3.0-or-later
// Preloaded into a client, tells when its ticks happen: each begins with a transaction. Before
// QSqlDatabase::transaction() a line "TIME CALLER" is appended to the file that
// TALLYVANE_TRANSACTION_LOG names: nanoseconds of the monotonic clock, and the address that the
// call came from, by which the collector's transactions are told from others.
#include <dlfcn.h>
#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>

namespace {

int openLog()
{
    const char* name = std::getenv("TALLYVANE_TRANSACTION_LOG");
    return name == nullptr ? -1 : open(name, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
}

void note(const void* caller)
{
    static const int log = openLog();
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    const long long time = std::chrono::nanoseconds(now).count();
    std::array<char, 64> line = {};
    const int length = std::snprintf(line.data(), line.size(), "%lld %p\n", time, caller);
    if (log != -1 && write(log, line.data(), static_cast<size_t>(length)) != length) {
        std::abort();
    }
}

using Transaction = bool (*)(void*);
constexpr auto Name = "_ZN12QSqlDatabase11transactionEv";

} // namespace

// Under the name of the member function, whose object is passed as any first argument.
extern "C" bool noteTransaction(void* database) __asm__("_ZN12QSqlDatabase11transactionEv");

extern "C" bool noteTransaction(void* database)
{
    static const auto next = reinterpret_cast<Transaction>(dlsym(RTLD_NEXT, Name));
    note(__builtin_return_address(0));
    return next(database);
}
