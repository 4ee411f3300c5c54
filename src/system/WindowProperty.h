// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtGlobal>

#include <cstddef>
#include <span>
#include <vector>

/// One X property as Xlib hands it over. A view; whoever asked owns the bytes.
struct WindowProperty
{
    quint64 type = 0;  ///< The type's atom; 0 when the window has no such property.
    int format = 0;    ///< 8, 16 or 32.
    quint64 count = 0; ///< Items of that format.
    std::span<const std::byte> data;
};

/// The values of a property of format 32 and the given type; empty for any other, for one without
/// items, and for what does not fit into the data. Xlib hands format 32 over as `long`, which is 64
/// bits wide here, of which the lower 32 count (XGetWindowProperty(3)).
std::vector<quint32> propertyValues(const WindowProperty& property, quint64 expectedType);
