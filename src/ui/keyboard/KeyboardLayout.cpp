// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/keyboard/KeyboardLayout.h"

#include "base/KeyNames.h"

#include <QCoreApplication>

#include <algorithm>
#include <limits>

bool KeyboardKey::isCounted() const
{
    return key != Qt::Key_unknown;
}

bool KeyboardKey::contains(const QPointF& point) const
{
    return area.contains(point) || lower.contains(point);
}

QRectF KeyboardKey::boundingArea() const
{
    return area.united(lower);
}

KeyboardLayout::KeyboardLayout(QList<KeyboardKey> keys)
    : m_keys(std::move(keys))
{
}

QSizeF KeyboardLayout::size() const
{
    QRectF all;
    for (const KeyboardKey& key : m_keys) {
        all = all.united(key.boundingArea());
    }
    return all.size();
}

bool KeyboardLayout::hasPlace(int key) const
{
    return std::any_of(m_keys.begin(), m_keys.end(), [key](const KeyboardKey& placed) {
        return placed.isCounted() && placed.key == key;
    });
}

bool KeyboardLayout::isShared(int key) const
{
    return std::count_if(m_keys.begin(), m_keys.end(), [key](const KeyboardKey& placed) {
               return placed.isCounted() && placed.key == key;
           }) > 1;
}

QString KeyboardLayout::keyName(int key) const
{
    const auto placed =
        std::find_if(m_keys.begin(), m_keys.end(), [key](const KeyboardKey& candidate) {
            return candidate.isCounted() && candidate.key == key;
        });
    if (placed != m_keys.end()) {
        return placed->name;
    }
    const QString name = KeyNames::text(key);
    return name.isEmpty() ? QCoreApplication::translate("KeyboardLayout", "Key %1").arg(key) : name;
}

int KeyboardLayout::neighbour(int index, Direction direction) const
{
    const bool isSideways = direction == Direction::Left || direction == Direction::Right;
    const double sign = direction == Direction::Right || direction == Direction::Down ? 1.0 : -1.0;
    constexpr double least = 0.3;  // Keys of one row differ in height by half a key at most.
    constexpr double sideCost = 3; // Rather the key straight ahead than a near one beside it.
    const QPointF from = m_keys.at(index).boundingArea().center();
    int best = index;
    double bestCost = std::numeric_limits<double>::max();
    for (int i = 0; i < m_keys.size(); ++i) {
        const QPointF way = m_keys.at(i).boundingArea().center() - from;
        const double ahead = sign * (isSideways ? way.x() : way.y());
        const double aside = std::abs(isSideways ? way.y() : way.x());
        const double cost = ahead + sideCost * aside;
        if (ahead > least && cost < bestCost) {
            best = i;
            bestCost = cost;
        }
    }
    return best;
}

int KeyboardLayout::keyAt(const QPointF& point) const
{
    const auto hit = std::find_if(m_keys.begin(), m_keys.end(),
                                  [&point](const KeyboardKey& key) { return key.contains(point); });
    return hit == m_keys.end() ? -1 : static_cast<int>(hit - m_keys.begin());
}
