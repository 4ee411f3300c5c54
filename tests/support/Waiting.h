// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QTest>

/// Whether `condition` comes true, while the event loop turns. Far more patient than anything
/// takes, also under a sanitizer on a machine that has other things to do.
template <typename Condition>
bool comesTrue(Condition condition)
{
    constexpr int patienceMs = 60'000;
    return QTest::qWaitFor(condition, patienceMs);
}
