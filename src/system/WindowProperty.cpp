// SPDX-License-Identifier: GPL-3.0-or-later
#include "system/WindowProperty.h"

#include <algorithm>
#include <cstring>

std::vector<quint32> propertyValues(const WindowProperty& property, quint64 expectedType)
{
    constexpr int valueFormat = 32;
    if (property.type == 0 || property.type != expectedType || property.format != valueFormat) {
        return {};
    }
    const size_t fitting = property.data.size() / sizeof(unsigned long);
    const auto count = static_cast<size_t>(std::min<quint64>(property.count, fitting));
    std::vector<quint32> values(count);
    for (size_t i = 0; i < count; ++i) {
        unsigned long value = 0;
        std::memcpy(&value, property.data.data() + i * sizeof value, sizeof value);
        values[i] = static_cast<quint32>(value & 0xffffffffUL);
    }
    return values;
}
