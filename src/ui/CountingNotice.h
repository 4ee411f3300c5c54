// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/InputState.h"
#include "ui/Notice.h"

#include <optional>

/// What a view tells about the counting, beside or in place of its figures. Thread: main.
namespace CountingNotice {

/// The notice for a state of counting; none where keys are counted.
std::optional<Notice::Content> forState(InputState state);

/// The notice where the database cannot be read.
Notice::Content unreadable();

} // namespace CountingNotice
