// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/QuantityScale.h"
#include "ui/keyboard/KeyboardLayout.h"

#include <QHash>
#include <QWidget>

class QPainterPath;

/// A keyboard whose caps are coloured by how often each key was pressed. A key that was not is an
/// empty cap; one that is not counted by itself a dashed one. From enough room on, caps carry their
/// counts. Hovering tells of a key; so do the arrow keys, which move a ring from key to key.
///
/// A count lies on the cap that was pressed, whatever its legend: see `KeyboardLayout`.
/// Thread: main.
class KeyboardDrawing : public QWidget
{
    Q_OBJECT

public:
    explicit KeyboardDrawing(QWidget* parent = nullptr);

    void setKeyboard(const KeyboardLayout& keyboard);

    const KeyboardLayout& keyboard() const { return m_keyboard; }

    /// Counts by stored key. Shares are of the sum of all of them, those without a place included.
    void setCounts(const QHash<int, qint64>& counts);

    void setScaleForm(QuantityScale::Form form);

    /// Of the keys that have a place.
    const QuantityScale& scale() const { return m_scale; }

    /// What is told of the key at `index` of the keyboard: "A: 12,403 keys, 4.1 %".
    QString describe(int index) const;

    /// The key of the keyboard under a point of the widget; -1 where there is none.
    int keyAt(const QPointF& position) const;

    /// Where a key lies in the widget.
    QRectF keyArea(int index) const;

    int focusedKey() const { return m_focused; }

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;
    int heightForWidth(int width) const override;

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    struct Look;

    double unit() const; ///< Pixels of one key unit.
    QPointF origin() const;
    QRectF toWidget(const QRectF& area) const;
    void updateScale();
    void showFocused();
    QPainterPath capShape(const KeyboardKey& key) const;
    Look look() const;
    void paintKey(QPainter& painter, const KeyboardKey& key, const Look& look) const;
    void paintText(QPainter& painter, const KeyboardKey& key, const QString& count,
                   const Look& look) const;

    KeyboardLayout m_keyboard;
    QSizeF m_boardSize; ///< In key units.
    QHash<int, qint64> m_counts;
    qint64 m_sum = 0;
    QuantityScale m_scale;
    int m_focused = 0;
};
