// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/wizard/WelcomePage.h"

#include "ui/Icons.h"

#include <QLabel>
#include <QVBoxLayout>

namespace {

constexpr int LogoSize = 96;

} // namespace

WelcomePage::WelcomePage(QWidget* parent)
    : WizardPage(QStringLiteral("welcomePage"), tr("Welcome to Tallyvane"), parent)
{
    auto* logo = new QLabel;
    logo->setPixmap(Icons::symbol(QStringLiteral("tallyvane"))
                        .pixmap(QSize(LogoSize, LogoSize), devicePixelRatioF()));
    body()->insertWidget(0, logo);
    addText(tr("Tallyvane counts how you use this computer: the keys you press, the clicks, the "
               "way the mouse travels, the time, and the network traffic. It starts with your "
               "desktop, stays in the tray, and keeps what it counts on this computer."));
    addText(tr("The next pages show what is counted, look whether everything can be, and let you "
               "link an account, if you want one."));
    body()->addStretch();
}

QString WelcomePage::nextText() const
{
    return tr("Begin");
}

QString WelcomePage::backText() const
{
    return {};
}
