// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/Quantity.h"

#include <QList>
#include <QWidget>

#include <optional>

/// One quantity over columns side by side, from zero: a single series as bars, several as lines
/// with their names at the end. Hovering over a column tells its exact values. Where columns can be
/// chosen, so do the arrow keys, and a click or Enter chooses. Thread: main.
class SeriesChart : public QWidget
{
    Q_OBJECT

public:
    struct Column
    {
        QString label; ///< Below the chart; empty for none.
        int rank = 0;  ///< Where there is little room, only labels of higher ranks stay.
    };

    struct Series
    {
        static constexpr int Accent = -1;

        QString name;
        int colour = Accent;                   ///< A category of `Ramp`; beyond them "other".
        QList<std::optional<double>> values{}; ///< One to a column; nothing where there is a gap.
        friend bool operator==(const Series&, const Series&) = default;
    };

    QSize sizeHint() const override;

protected:
    enum class Choice
    {
        None,    ///< Columns can only be looked at.
        Columns, ///< Columns can be chosen.
    };

    SeriesChart(Choice choice, QWidget* parent);

    /// `caption` says what the vertical axis measures, without its unit, which is added.
    void setContent(const Quantity& quantity, const QString& caption, const QList<Column>& columns,
                    const QList<Series>& series);

    /// Sets off one column, with a word on top of it; -1 for none.
    void setMark(int column, const QString& word);

    /// What hovering over a column tells, and a screen reader reads.
    virtual QString describe(int column) const = 0;

    /// What a screen reader reads of the whole.
    virtual QString summary() const = 0;

    /// The user chose a column.
    virtual void choose(int column);

    const Quantity& quantity() const { return m_quantity; }

    const QList<Series>& series() const { return m_series; }

    void changeEvent(QEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    struct EndLabel
    {
        int series;
        double y; ///< Of its middle.
    };

    int columnCount() const { return static_cast<int>(m_columns.size()); }

    bool isBars() const { return m_series.size() == 1; }

    void layOut();
    double layOutEndLabels();
    void placeEndLabels();
    QString elidedName(const Series& series) const;
    QColor colour(const Series& series) const;
    QRectF columnArea(int column) const;
    int columnAt(const QPointF& position) const;
    double yOf(double value) const;
    void moveTo(int column);
    void showTip(int column, const QPoint& globalPosition);
    void paintGrid(QPainter& painter) const;
    void paintGrounds(QPainter& painter) const;
    void paintColumnLabels(QPainter& painter) const;
    bool labelsFit(int rank) const;
    QRectF labelArea(int column) const;
    void paintBars(QPainter& painter) const;
    void paintLine(QPainter& painter, const Series& series) const;
    void paintEndLabels(QPainter& painter) const;

    Choice m_choice;
    Quantity m_quantity;
    QString m_caption;
    QList<Column> m_columns;
    QList<Series> m_series;
    AxisSteps m_steps;
    QFont m_font;
    QRectF m_plot; ///< Without axes and labels.
    QList<EndLabel> m_endLabels;
    int m_hovered = -1;
    int m_pressed = -1;
    int m_current = -1; ///< Where the arrow keys are.
    int m_marked = -1;
    QString m_markWord;
};
