// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/wizard/AuthorizationPage.h"

#include "ui/CopyField.h"
#include "ui/wizard/BusyLine.h"

#include <QLabel>
#include <QPushButton>
#include <QUrl>
#include <QVBoxLayout>

AuthorizationPage::AuthorizationPage(QWidget* parent)
    : WizardPage(QStringLiteral("authorizationPage"), tr("Link an account"), parent)
    , m_text(addText({}))
    , m_state(addText({}))
    , m_line(new BusyLine)
    , m_address(new CopyField(QStringLiteral("pageAddress"), tr("Address of the website's page"),
                              tr("Copy address"), CopyField::Ground::Page))
    , m_again(button(QStringLiteral("again"), {}, tr("Try again")))
{
    m_text->setObjectName(QStringLiteral("authorizationText"));
    m_state->setObjectName(QStringLiteral("authorizationState"));
    body()->addWidget(m_line);
    m_addressText = addCaption(tr("If no browser opened, open this address in one:"));
    body()->addWidget(m_address);
    body()->addWidget(m_again, 0, Qt::AlignLeft);
    body()->addStretch();
    connect(m_again, &QPushButton::clicked, this, &AuthorizationPage::againRequested);
    showAsking();
}

void AuthorizationPage::showState(bool isUnderWay, const QString& text, const QString& state)
{
    m_isUnderWay = isUnderWay;
    m_text->setText(text);
    m_text->setVisible(!text.isEmpty());
    m_state->setText(state);
    m_state->setVisible(!state.isEmpty());
    m_line->setVisible(isUnderWay);
    m_again->setVisible(!isUnderWay);
    m_addressText->hide();
    m_address->hide();
    Q_EMIT changed();
}

void AuthorizationPage::showAsking()
{
    showState(true, {}, tr("Asking the website for a page to link this computer…"));
}

void AuthorizationPage::showWaiting(const QUrl& page)
{
    showState(true,
              tr("You have been redirected to the website, please follow the instructions there. "
                 "After you finish the login procedure, the client will automagically log in and "
                 "you're off to the races!"),
              tr("Waiting on authorization via website.."));
    m_address->setText(page.toString(QUrl::FullyEncoded));
    m_addressText->show();
    m_address->show();
}

void AuthorizationPage::showFailed(const QString& text)
{
    showState(false, text, {});
    m_again->setFocus();
}

QString AuthorizationPage::nextText() const
{
    return {};
}

QString AuthorizationPage::backText() const
{
    return m_isUnderWay ? tr("Cancel") : WizardPage::backText();
}

void AuthorizationPage::takeFocus()
{
    if (m_again->isVisible()) {
        m_again->setFocus();
    }
}
