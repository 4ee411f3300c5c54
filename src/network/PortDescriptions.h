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

    /// Empty where there is none, and for transports other than TCP and UDP.
    QString description(int port, Utils::TrafficType type) const;

    /// True where there is a description.
    bool isKnown(int port, Utils::TrafficType type) const;

    /// These, with those of `winning` added or put in their place.
    PortDescriptions overlaidBy(const PortDescriptions& winning) const;
};
