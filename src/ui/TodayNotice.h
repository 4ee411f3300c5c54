// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/InputState.h"
#include "ui/Notice.h"

#include <optional>

/// What the Today view tells beside or in place of its figures. Thread: main.
namespace TodayNotice {

enum class Figures
{
    None,
    Shown,
};

/// The notice for a state of counting; none where keys are counted and there are figures to see.
std::optional<Notice::Content> forState(InputState state, Figures figures);

/// The notice where the database cannot be read.
Notice::Content unreadable();

} // namespace TodayNotice
