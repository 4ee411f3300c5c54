// SPDX-License-Identifier: GPL-3.0-or-later
#include "system/ClickPosition.h"

#include <cmath>

namespace {

/// In single precision, like the positions that were stored before.
float folded(int position, int extent)
{
    const float share = static_cast<float>(position) / static_cast<float>(extent);
    return share > 1.0F ? share - std::trunc(share) : share;
}

} // namespace

QPointF clickPosition(const QPoint& cursor, const QRect& primaryScreen)
{
    if (primaryScreen.isEmpty()) {
        return {};
    }
    return {folded(cursor.x(), primaryScreen.width()), folded(cursor.y(), primaryScreen.height())};
}
