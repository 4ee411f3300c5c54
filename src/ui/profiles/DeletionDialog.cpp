// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/profiles/DeletionDialog.h"

#include "ui/Theme.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>

namespace {

constexpr int LeastWidth = 360;
constexpr int DelayMs = 500;
constexpr int Whole = 100;

} // namespace

DeletionDialog::DeletionDialog(const QString& profile, QWidget* parent)
    : QDialog(parent)
    , m_text(new QLabel(tr("Deleting the profile “%1”…").arg(profile), this))
    , m_bar(new QProgressBar(this))
{
    setWindowTitle(tr("Delete profile"));
    setMinimumWidth(LeastWidth);
    setModal(true);
    m_text->setObjectName(QStringLiteral("text"));
    m_text->setTextFormat(Qt::PlainText);
    m_text->setWordWrap(true);
    m_bar->setObjectName(QStringLiteral("progress"));
    m_bar->setAccessibleName(tr("Progress"));
    m_bar->setRange(0, Whole);
    m_bar->setValue(0);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Cancel, this);
    m_cancel = buttons->button(QDialogButtonBox::Cancel);
    m_cancel->setObjectName(QStringLiteral("cancel"));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(Theme::Gap, Theme::Gap, Theme::Gap, Theme::Gap);
    layout->setSpacing(Theme::Rhythm);
    layout->addWidget(m_text);
    layout->addWidget(m_bar);
    layout->addWidget(buttons);
    connect(buttons, &QDialogButtonBox::rejected, this, &DeletionDialog::reject);
    m_delay.setSingleShot(true);
    connect(&m_delay, &QTimer::timeout, this, &QWidget::show);
    m_delay.start(DelayMs);
}

void DeletionDialog::setProgress(int percent)
{
    m_bar->setValue(percent);
}

void DeletionDialog::end()
{
    m_delay.stop();
    hide();
    deleteLater();
}

void DeletionDialog::reject()
{
    if (m_cancel->isEnabled()) {
        m_cancel->setEnabled(false);
        m_text->setText(tr("Cancelling…"));
        Q_EMIT rejected();
    }
}
