// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>
#include <QString>
#include <QWidget>

class QLabel;

/// One large figure under its name, with what it is compared with below, and a rate beside its name
/// while there is one. Keeps its size whatever it shows. Thread: main.
class FigureTile : public QWidget
{
    Q_OBJECT

public:
    struct Comparison
    {
        QString change;  ///< "▲ +12 %", or a value to stand beside the figure.
        QString caption; ///< With what, in two or three words.
        QString words;   ///< The same in full, for who hovers or listens.
    };

    static constexpr int MostComparisons = 2;

    explicit FigureTile(const QString& title, QWidget* parent = nullptr);

    /// `text` has its units after a space, which makes them smaller; `full` is the exact value.
    void setFigure(const QString& text, const QString& full);

    void setComparisons(const QList<Comparison>& comparisons);

    /// "3.2/s"; empty for none.
    void setRate(const QString& rate);

protected:
    void changeEvent(QEvent* event) override;

private:
    struct Line
    {
        QLabel* change;
        QLabel* caption;
    };

    void applyTheme();

    QLabel* m_title;
    QLabel* m_rate;
    QLabel* m_figure;
    QString m_text;
    QList<Line> m_lines;
};
