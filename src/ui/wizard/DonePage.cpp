// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/wizard/DonePage.h"

#include "ui/PlainText.h"

#include <QLabel>
#include <QVBoxLayout>

DonePage::DonePage(QWidget* parent)
    : WizardPage(QStringLiteral("donePage"), tr("All is set up"), parent)
    , m_account(addText({}))
    , m_restore(addText(tr("Your backup takes the place of the database when Tallyvane is started "
                           "again. Quit it from its menu in the tray, then start it again.")))
{
    m_account->setObjectName(QStringLiteral("outcome"));
    m_restore->setObjectName(QStringLiteral("restoreOutcome"));
    addText(tr("Tallyvane goes on in the tray. A click on its icon there opens the main window, "
               "and its menu pauses the counting or leads through these steps again."));
    body()->addStretch();
}

void DonePage::setOutcome(const QString& userName, Restore restore)
{
    m_account->setText(
        userName.isEmpty()
            ? tr("What you do is counted and stays on this computer. An account can be linked at "
                 "any time, in the view “Account”.")
            : tr("This computer is linked to the account of %1. What is counted is sent to it by "
                 "zurges: a zurge sends the counts since the last one, by itself or when you want "
                 "it.")
                  .arg(PlainText::breakable(userName)));
    m_restore->setVisible(restore == Restore::AtNextStart);
}

QString DonePage::nextText() const
{
    return tr("Finish");
}
