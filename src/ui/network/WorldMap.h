// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/QuantityScale.h"

#include <QPixmap>
#include <QTransform>
#include <QWidget>

class ScaleLegend;

/// Traffic with one country, in bytes. Plain value.
struct CountryValue
{
    QString code; ///< Two capitals, "LAN" or "??".
    quint64 download = 0;
    quint64 upload = 0;

    quint64 total() const { return download + upload; }

    friend bool operator==(const CountryValue&, const CountryValue&) = default;
};

/// The countries of the world, shaded by the traffic with them; one too small to be seen is a dot.
/// Hovering over a country tells its traffic; so do the arrow keys, which go from the one with the
/// most to the one with the least. Traffic that no country can be told for is named below. Thread:
/// main.
class WorldMap : public QWidget
{
    Q_OBJECT

public:
    explicit WorldMap(QWidget* parent = nullptr);

    void setValues(const QList<CountryValue>& values);

    /// What stands there while there is no traffic.
    void setEmptyText(const QString& text);

    /// The code of the country under a point of the widget; empty where there is none.
    QString countryAt(const QPointF& position) const;

    /// Where a country's middle lies on the widget.
    QPointF middleOf(const QString& code) const;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

Q_SIGNALS:
    void countryClicked(QString code);

protected:
    bool event(QEvent* event) override;
    void changeEvent(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;

private:
    /// A country with traffic.
    struct Placed
    {
        CountryValue value;
        qsizetype shape = -1; ///< Its place among the shapes.
    };

    void layOut();
    int footerHeight() const;
    QString elsewhereText() const;
    QString describe(const QString& code) const;
    void updateAccessibleText();
    void setHovered(const QString& code);
    void moveTo(qsizetype rank);
    qsizetype rankOf(const QString& code) const;
    bool isDot(qsizetype shape) const;
    QPointF middleOf(qsizetype shape) const;
    QPixmap picture() const;
    QColor colourOf(const Placed& placed) const;
    void paintDots(QPainter& painter) const;
    void paintRing(QPainter& painter, const QString& code, const QColor& colour,
                   double width) const;
    void paintElsewhere(QPainter& painter) const;

    QList<Placed> m_placed;          ///< The most traffic first.
    QList<CountryValue> m_elsewhere; ///< Not on the map; the most traffic first.
    QuantityScale m_scale;
    QString m_emptyText;
    QString m_focused; ///< The code that the keys are at.
    QString m_hovered;
    QString m_pressed;
    QTransform m_toWidget; ///< From the sheet.
    QPixmap m_picture;     ///< All but the rings; null when it has to be painted anew.
    ScaleLegend* m_legend;
};
