// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/settings/SettingsDialog.h"

#include "ui/Theme.h"
#include "ui/settings/ClientApiPanel.h"

#include <QPushButton>
#include <QVBoxLayout>

SettingsDialog::SettingsDialog(QWidget* parent)
    : QDialog(parent)
    , m_clientApi(new ClientApiPanel(this))
{
    setObjectName(QStringLiteral("settings"));
    setWindowTitle(tr("Settings"));
    setAttribute(Qt::WA_DeleteOnClose);
    auto* done = new QPushButton(tr("&Close"), this);
    done->setObjectName(QStringLiteral("close"));
    done->setAutoDefault(false); // Enter in a field stores it, and closes nothing.
    done->setMinimumSize(done->sizeHint().width() + 2 * Theme::Rhythm, 4 * Theme::Rhythm);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(Theme::Gap, Theme::Gap, Theme::Gap, Theme::Gap);
    layout->setSpacing(Theme::Gap);
    layout->addWidget(m_clientApi);
    layout->addWidget(done, 0, Qt::AlignRight);
    layout->setSizeConstraint(QLayout::SetFixedSize); // Wrapped text is cut in a window less high.
    connect(done, &QPushButton::clicked, this, &QDialog::reject);
    connect(m_clientApi, &ClientApiPanel::settingsChanged, this, &SettingsDialog::settingsChanged);
    connect(m_clientApi, &ClientApiPanel::linkRequested, this, &SettingsDialog::linkRequested);
}

/// Hides, by which a field loses the focus, while there is still somebody to store what it holds.
SettingsDialog::~SettingsDialog()
{
    hide();
}

void SettingsDialog::setClientApiState(const ClientApiState& state)
{
    m_clientApi->setState(state);
}
