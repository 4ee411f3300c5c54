// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>
#include <QString>
#include <QWidget>

class QLabel;
class QLayout;

/// One large figure under its name, with lines on it below, and a rate beside its name while there
/// is one. Keeps its size whatever it shows. Thread: main.
class FigureTile : public QWidget
{
    Q_OBJECT

public:
    struct Line
    {
        QString lead;   ///< "▲ +12 %", or a value to stand beside the figure; may be empty.
        QString text;   ///< What the lead is compared with, or a remark.
        QString inFull; ///< The same in full, for who hovers or listens.
    };

    /// Has room for `lines` lines.
    FigureTile(const QString& title, int lines, QWidget* parent = nullptr);

    void setTitle(const QString& title);

    /// `text` has its units after a space, which makes them smaller; `full` is the exact value.
    void setFigure(const QString& text, const QString& full);

    void setLines(const QList<Line>& lines);

    /// "3.2/s"; empty for none.
    void setRate(const QString& rate);

protected:
    void changeEvent(QEvent* event) override;

private:
    struct Labels
    {
        QLabel* lead = nullptr;
        QLabel* text = nullptr;
    };

    QLayout* linesLayout(int lines);
    void applyTheme();

    QLabel* m_title;
    QLabel* m_rate;
    QLabel* m_figure;
    QString m_text;
    QList<Labels> m_lines;
};
