// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/settings/AddressList.h"

#include <QHostAddress>
#include <QStringList>

QString AddressList::stored(const QString& typed)
{
    QStringList entries = typed.split(QLatin1Char(','));
    for (QString& entry : entries) {
        entry = entry.trimmed();
    }
    return entries.join(QLatin1Char(','));
}

std::optional<AddressList::Fault> AddressList::firstFault(const QString& list)
{
    if (list.isEmpty()) {
        return std::nullopt;
    }
    for (const QString& entry : list.split(QLatin1Char(','))) {
        const QString writtenAs = QHostAddress(entry).toString();
        if (entry.isEmpty() || entry != writtenAs) {
            return Fault{.entry = entry, .writtenAs = writtenAs};
        }
    }
    return std::nullopt;
}
