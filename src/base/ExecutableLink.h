// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

/// The link by which "/proc" names the program that a process runs, see proc_pid_exe(5).
namespace ExecutableLink {

/// The executable that the link at `path`, "/proc/<pid>/exe", leads to. One that was replaced or
/// removed since it was started keeps its path, without the mark " (deleted)" that the kernel puts
/// behind it. Empty where the link cannot be read, with `error` set as errno(3) is: a process that
/// has gone, a kernel thread, another user's process. Any thread.
QString target(const QString& path, int& error);

} // namespace ExecutableLink
