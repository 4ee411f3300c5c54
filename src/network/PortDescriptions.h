// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/Utils.h"

#include <QHash>
#include <QString>

/// What services use which ports: "80", TCP: "World Wide Web HTTP". Plain value, shared by copy.
struct PortDescriptions
{
    QHash<int, QString> tcp; ///< From port to description.
    QHash<int, QString> udp;

    /// Empty where there is none.
    QString description(int port, Utils::TrafficType type) const;
    bool isKnown(int port, Utils::TrafficType type) const;
};
