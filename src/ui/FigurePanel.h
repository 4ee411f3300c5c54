// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QBoxLayout>
#include <QWidget>

class CountsModel;
class QLabel;

/// The first row of a model as a large figure, the others as small ones below or beside it.
/// Thread: main.
class FigurePanel : public QWidget
{
    Q_OBJECT

public:
    /// Shows up to `facts` rows after the first. `model` must live longer.
    FigurePanel(CountsModel* model, QString unit, int facts, QWidget* parent = nullptr);

    /// Where the facts stand: below the figure, or beside it where the card is wide and low.
    void setDirection(QBoxLayout::Direction direction);

    /// What hovering over the figure tells after the full number.
    void setNote(const QString& note);

protected:
    void changeEvent(QEvent* event) override;

private:
    struct Fact
    {
        QLabel* caption;
        QLabel* value;
    };

    void follow();
    void applyTheme();

    CountsModel* m_model;
    QString m_unit;
    QString m_note;
    QLabel* m_figure;
    QLabel* m_unitLabel;
    QList<Fact> m_facts;
    QBoxLayout* m_layout;
    QBoxLayout* m_factsLayout;
};
