// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/wizard/PermissionsPage.h"

#include "ui/CountingNotice.h"
#include "ui/Notice.h"
#include "ui/network/NetworkNotice.h"

#include <QVBoxLayout>

namespace {

constexpr int CheckMs = 2000;

Notice::Content inputContent(InputState state)
{
    Notice::Content content = CountingNotice::forState(state).value_or(Notice::Content{
        .icon = QStringLiteral("check"),
        .title = PermissionsPage::tr("Keys and the mouse are counted"),
        .text = PermissionsPage::tr("Tallyvane may read the input devices of this computer."),
        .command = {},
        .button = {}});
    content.button.clear(); // What can be switched is switched in the main window.
    return content;
}

Notice::Content networkContent(const std::optional<CaptureState>& state)
{
    if (!state) {
        return NetworkNotice::off();
    }
    return NetworkNotice::forCapture(*state).value_or(
        Notice::Content{.icon = QStringLiteral("check"),
                        .title = PermissionsPage::tr("Network traffic is counted"),
                        .text = PermissionsPage::tr("By interface, application, country and port."),
                        .command = {},
                        .button = {}});
}

} // namespace

PermissionsPage::PermissionsPage(QWidget* parent)
    : WizardPage(QStringLiteral("permissionsPage"), tr("What can be counted"), parent)
    , m_input(new Notice)
    , m_network(new Notice)
{
    addText(tr("Counting keys and traffic needs permissions that only an administrator can give. "
               "You can also give them later: what is missing is shown in the main window."));
    m_input->setObjectName(QStringLiteral("inputPermission"));
    m_network->setObjectName(QStringLiteral("networkPermission"));
    m_input->hide(); // Until it is known.
    m_network->hide();
    body()->addWidget(m_input);
    body()->addWidget(m_network);
    body()->addStretch();
    m_check.setInterval(CheckMs);
    connect(&m_check, &QTimer::timeout, this, &PermissionsPage::checkRequested);
}

void PermissionsPage::setPermissions(InputState input, const std::optional<CaptureState>& capture)
{
    m_input->setContent(inputContent(input));
    m_network->setContent(networkContent(capture));
    m_input->show();
    m_network->show();
}

void PermissionsPage::showEvent(QShowEvent* event)
{
    WizardPage::showEvent(event);
    m_check.start();
    Q_EMIT checkRequested();
}

void PermissionsPage::hideEvent(QHideEvent* event)
{
    m_check.stop();
    WizardPage::hideEvent(event);
}
