// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/history/HistoryMarks.h"
#include "ui/history/RollUpCoverage.h"

class RollUpFile;

/// What the roll-ups hold, and what they were made from; kept in their file. Plain value.
struct RollUpState
{
    RollUpCoverage coverage;
    HistoryMarks marks;

    /// False where what the file holds is no such state.
    bool load(const RollUpFile& file);

    /// Inside the transaction that changes the sums.
    bool store(RollUpFile& file) const;
};
