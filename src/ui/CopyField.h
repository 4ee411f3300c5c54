// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QWidget>

class QLineEdit;
class QPushButton;

/// A line of text that is there to be copied, with the button that does so: a command, a path, an
/// address. Thread: main.
class CopyField : public QWidget
{
    Q_OBJECT

public:
    /// What the field lies on, from which its line is set off.
    enum class Ground
    {
        Card,
        Page,
    };

    /// The line is called `name`, its button "copy" and that name; a screen reader calls the line
    /// `meaning`. The button says `action`.
    CopyField(const QString& name, const QString& meaning, const QString& action, Ground ground,
              QWidget* parent = nullptr);

    void setText(const QString& text);

protected:
    void changeEvent(QEvent* event) override;

private:
    void applyTheme();
    void copy();

    QLineEdit* m_line;
    QPushButton* m_copy;
    QString m_action;
    Ground m_ground;
};
