// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDateTime>
#include <QMap>
#include <QString>
#include <QVariant>

#include <optional>

/// Takes typed values out of what the account service answered, as `JsonReader` gives it. Any type
/// may stand in any place; one that does not fit reads as if nothing stood there. Any thread.
namespace AnswerFields {

using Map = QMap<QString, QVariant>;

/// A whole number, or its decimal text. A fraction is never rounded, true and false are none.
std::optional<qint64> wholeNumber(const QVariant& value);

/// A text; empty where it is none.
QString text(const QVariant& value);

/// An object; empty where it is none.
Map object(const QVariant& value);

/// A list of objects; whatever else stands in the list is left out.
QList<Map> objects(const QVariant& value);

/// A date-time "yyyy-MM-dd HH:mm:ss", which the service tells in UTC, as local time; invalid where
/// it is none.
QDateTime localTime(const QVariant& value);

} // namespace AnswerFields
