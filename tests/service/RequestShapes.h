// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "service/Shape.h"

#include <QHash>
#include <QList>
#include <QString>

/// One kind of heat map. Plain value.
struct HeatmapKind
{
    enum class Scope
    {
        Computer,
        Application, ///< A row says which one.
    };

    QString requestType;
    QString field;   ///< Of the request's data.
    QString subject; ///< The field of a row that says what was counted.
    Scope scope = Scope::Computer;
};

const QList<HeatmapKind>& heatmapKinds();

/// What the data of each request type has to look like, by type: all types there are.
const QHash<QString, Shape>& requestShapes();
