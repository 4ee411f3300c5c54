// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QBoxLayout>
#include <QWidget>

class CountsModel;
class QLabel;

/// The first row of a model as a large figure, shortened from a million on, the others as small
/// ones below or beside it. Thread: main.
class FigurePanel : public QWidget
{
    Q_OBJECT

public:
    /// Shows up to `facts` rows after the first, or `factsWhenLow` of them. `model` must live
    /// longer.
    FigurePanel(CountsModel* model, QString unit, int facts, int factsWhenLow,
                QWidget* parent = nullptr);

    enum class Form
    {
        Tall, ///< The facts below the figure, one a line.
        Low,  ///< The facts beside the figure, one a column.
    };

    void setForm(Form form);

    /// What hovering over the figure tells after the full number.
    void setNote(const QString& note);

protected:
    void changeEvent(QEvent* event) override;

private:
    struct Fact
    {
        QLabel* caption;
        QLabel* value;
        QBoxLayout* layout;
    };

    QWidget* buildFigure();
    void addFact();
    void follow();
    void applyTheme();

    CountsModel* m_model;
    QString m_unit;
    QString m_note;
    int m_factsWhenLow;
    QLabel* m_figure;
    QLabel* m_unitLabel;
    QList<Fact> m_facts;
    QBoxLayout* m_layout;
    QBoxLayout* m_factsLayout;
};
