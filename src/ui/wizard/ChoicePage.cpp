// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/wizard/ChoicePage.h"

#include "ui/Theme.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>

namespace {

constexpr int AnswerHeight = 7 * Theme::Rhythm;

} // namespace

ChoicePage::ChoicePage(const QString& name, const QString& title, const Answer& active,
                       const Answer& quiet, QWidget* parent)
    : WizardPage(name, title, parent)
    , m_question(addText({}))
    , m_active(button(active.name, active.icon, active.text))
    , m_quiet(button(quiet.name, quiet.icon, quiet.text))
{
    auto* answers = new QHBoxLayout;
    answers->setSpacing(Theme::Gap);
    for (QPushButton* answer : {m_active, m_quiet}) {
        answer->setMinimumHeight(AnswerHeight);
        answer->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
        answers->addWidget(answer, 1);
    }
    body()->addLayout(answers);
    m_remark = addCaption({});
    body()->addStretch();
    connect(m_active, &QPushButton::clicked, this, &ChoicePage::activeChosen);
    connect(m_quiet, &QPushButton::clicked, this, &ChoicePage::quietChosen);
}

void ChoicePage::setQuestion(const QString& text)
{
    m_question->setText(text);
}

void ChoicePage::setAnswers(const QString& active, const QString& quiet)
{
    setText(*m_active, active);
    setText(*m_quiet, quiet);
}

QPushButton* ChoicePage::addAside(const QString& name, const QString& icon, const QString& text)
{
    QPushButton* aside = button(name, icon, text);
    body()->insertWidget(body()->count() - 1, aside, 0, Qt::AlignLeft); // Above what stretches.
    return aside;
}

void ChoicePage::setRemark(const QString& text)
{
    m_remark->setText(text);
}

QString ChoicePage::nextText() const
{
    return {};
}

void ChoicePage::takeFocus()
{
    m_quiet->setFocus();
}
