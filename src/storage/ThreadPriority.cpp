// SPDX-License-Identifier: GPL-3.0-or-later
#include "storage/ThreadPriority.h"

#include <linux/ioprio.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

/// Both calls concern the calling thread only, see setpriority(2) and ioprio_set(2).
void ThreadPriority::stepBack()
{
    // Not the lowest priority: a busy machine shall not put the work off for ever.
    constexpr int niceness = 5;
    (void)::setpriority(PRIO_PROCESS, 0, niceness);
    (void)::syscall(SYS_ioprio_set, IOPRIO_WHO_PROCESS, 0, IOPRIO_PRIO_VALUE(IOPRIO_CLASS_IDLE, 0));
}
