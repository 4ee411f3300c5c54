// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArrayView>

/// Calls `use` with each line of `text`, without its line feed, until it returns true. The last
/// line may lack its line feed.
template <typename Use>
void forEachLine(QByteArrayView text, Use use)
{
    while (!text.isEmpty()) {
        const qsizetype end = text.indexOf('\n');
        if (use(end < 0 ? text : text.first(end))) {
            return;
        }
        text = end < 0 ? QByteArrayView() : text.sliced(end + 1);
    }
}
