// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QJsonValue>
#include <QList>
#include <QString>
#include <QStringList>

/// One kind of heat map. Plain value.
struct HeatmapKind
{
    QString requestType;
    QString field;   ///< Of the request's data.
    QString subject; ///< The field of a row that says what was counted.
};

const QList<HeatmapKind>& heatmapKinds();

/// What a look at the data of a request found. Plain value.
struct ShapeFindings
{
    QStringList faults;  ///< Missing, or of the wrong type: the data is of no use.
    QStringList unknown; ///< Fields that nobody asked for.
};

/// Compares the data of a request of this type with what docs/account-protocol.md says of it.
ShapeFindings checkShape(const QString& requestType, const QJsonValue& data);
