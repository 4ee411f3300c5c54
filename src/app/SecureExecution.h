// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

/// A program whose file bears a capability, here the right to capture packets, lends it to whoever
/// starts it. The dynamic loader therefore drops "LD_PRELOAD" and its like (ld.so(8),
/// "Secure-execution mode"); what makes Qt and GTK load foreign code is left to the program.
///
/// What is granted is kept while the program runs: as long as the process holds a capability that
/// the user's other programs lack, the kernel lets none of them trace it or take its sockets
/// (ptrace(2), "Ptrace access mode checking"). Programs that it starts inherit nothing.
namespace SecureExecution {

/// Takes the environment variables and arguments that name directories of plugins away. Does
/// nothing without such a capability. Before the application object and any thread exist.
void refuseForeignPlugins(int& argc, char** argv);

} // namespace SecureExecution
