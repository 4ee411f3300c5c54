// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QAbstractSlider>
#include <QWidget>

class QLabel;
class QPushButton;
class QScrollArea;
class QVBoxLayout;

/// One page of the first steps: a title, words, and what belongs to it, which scrolls where the
/// window is too small. What the buttons below it say is asked anew after `changed`. Thread: main.
class WizardPage : public QWidget
{
    Q_OBJECT

public:
    WizardPage(const QString& name, const QString& title, QWidget* parent = nullptr);

    /// What the button that goes on says; empty where the page has buttons of its own for that.
    virtual QString nextText() const;

    /// What the button that goes back says; empty for none.
    virtual QString backText() const;

    virtual bool canGoOn() const;

    /// Gives the focus to what the user most likely wants; does nothing where that is to go on.
    virtual void takeFocus();

    void scroll(QAbstractSlider::SliderAction action);

Q_SIGNALS:
    void changed();

protected:
    void setTitle(const QString& title);

    /// Adds a paragraph of plain text.
    QLabel* addText(const QString& text);

    /// As above, smaller and fainter.
    QLabel* addCaption(const QString& text);

    QVBoxLayout* body() const { return m_body; }

    /// A button of the height that buttons have here.
    static QPushButton* button(const QString& name, const QString& icon, const QString& text);

    /// Gives the button its text and room for that.
    static void setText(QPushButton& button, const QString& text);

    void changeEvent(QEvent* event) override;

private:
    void applyTheme();

    QLabel* m_title;
    QScrollArea* m_scroll;
    QVBoxLayout* m_body = nullptr;
    QList<QLabel*> m_captions;
};
