// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/overview/Baseline.h"

#include <QString>

/// What baselines are called. Thread: any.
namespace BaselineText {

/// In two or three words: "last Sat", "30-day mean", "7 days before".
QString caption(const Baseline& baseline);

/// After "more than" or "as much as": "on Saturday, 14 November 2026, until 14:25".
QString words(const Baseline& baseline, const QTime& time);

} // namespace BaselineText
