// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

/// The calling thread's place among the others.
namespace ThreadPriority {

/// Lets everyone else have the processor and the disk first, for the rest of the calling thread's
/// life. Where the system refuses, the thread is merely less polite.
void stepBack();

} // namespace ThreadPriority
