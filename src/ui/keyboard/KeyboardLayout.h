// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>
#include <QRectF>
#include <QSizeF>
#include <QString>

/// One key of a keyboard. Lengths are in key units, the distance of two letters side by side, from
/// the upper left corner of the board. Plain value.
struct KeyboardKey
{
    int key = 0;         ///< As it is stored; `Qt::Key_unknown` where it is not counted by itself.
    QString legend;      ///< What the cap says.
    QString shortLegend; ///< The same for a small cap; empty where `legend` is short.
    QString name;        ///< To tell of it in a sentence.
    QRectF area;
    QRectF lower; ///< The rest of a key that is no rectangle, overlapping `area`; else null.

    bool isCounted() const;
    bool contains(const QPointF& point) const;
    QRectF boundingArea() const;
};

/// The keys of one keyboard, full size. Plain value.
///
/// A count is stored under the key's place, not under its legend: the kernel's key codes, from
/// which the stored values come (`KeyMap`), name places by what a US board shows there. So the A of
/// a French board, which lies where a US one has its Q, is stored as Q. A layout therefore never
/// moves a stored value from one place to another: all it changes is the legends and, with the form
/// of the board, where a place lies (code 43 is above Enter on ANSI boards and left of it on ISO
/// ones) and which places exist (only ISO boards have a key right of the left Shift).
///
/// Left and right Shift are stored as one value, and so are left and right Ctrl: both places carry
/// the sum. Some keys have no stored value and are in the totals only.
class KeyboardLayout
{
public:
    KeyboardLayout() = default;
    explicit KeyboardLayout(QList<KeyboardKey> keys);

    const QList<KeyboardKey>& keys() const { return m_keys; }

    QSizeF size() const;

    /// Whether a stored key has a place here.
    bool hasPlace(int key) const;

    /// Whether a stored key has two places.
    bool isShared(int key) const;

    /// The name of a stored key on this board: its legend where it has a place for a character.
    QString keyName(int key) const;

    enum class Direction
    {
        Left,
        Right,
        Up,
        Down,
    };

    /// The key next to the one at `index`, or itself where the board ends.
    int neighbour(int index, Direction direction) const;

    /// The key at a point; -1 where there is none.
    int keyAt(const QPointF& point) const;

private:
    QList<KeyboardKey> m_keys;
};
