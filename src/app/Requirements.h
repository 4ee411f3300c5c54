// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

class DatabasePrompts;

/// What the client cannot run without.
namespace Requirements {

/// Whether this desktop has a system tray and the encryption library works. Where not, the user is
/// told. A Wayland desktop need not have a tray. Main thread, after the application object was
/// made.
bool areMet(DatabasePrompts& prompts);

} // namespace Requirements
