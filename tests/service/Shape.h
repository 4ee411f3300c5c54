// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QJsonValue>
#include <QList>
#include <QRegularExpression>
#include <QString>
#include <QStringList>

#include <functional>
#include <limits>

/// What a look at a JSON value found. Plain value.
struct ShapeFindings
{
    QStringList faults;  ///< Missing, or of the wrong type: the value is of no use.
    QStringList unknown; ///< Fields that nobody asked for.
};

/// What a JSON value has to look like: adds what is wrong with `value` to the findings, under the
/// name `path`.
using Shape =
    std::function<void(const QJsonValue& value, const QString& path, ShapeFindings& findings)>;

/// The shapes that docs/account-protocol.md speaks of.
namespace Shapes {

enum class Presence
{
    Required,
    Optional,
};

struct Field
{
    QString name;
    Shape shape;
    Presence presence = Presence::Required;
};

Shape text(); ///< May be empty.
Shape nonEmptyText();
Shape oneOf(const QStringList& texts);
Shape matching(const QRegularExpression& pattern); ///< A text.
Shape whole(qint64 least = 0, qint64 most = std::numeric_limits<qint64>::max());
Shape notNegative(); ///< A number, perhaps with a fraction.
Shape boolean();
Shape decimalText(); ///< A whole number as text.
Shape day();
Shape dateTime(); ///< Or the empty text.
Shape object(const QList<Field>& fields);
Shape listOf(const Shape& entry);
Shape mapOf(const QRegularExpression& names, const Shape& value);
Shape jsonText(const Shape& content); ///< Empty: not known.

} // namespace Shapes
