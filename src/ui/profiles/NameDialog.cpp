// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/profiles/NameDialog.h"

#include "ui/Theme.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace {

constexpr int LeastWidth = 360;

} // namespace

NameDialog::NameDialog(const QString& title, const QString& action, const QString& name,
                       Problem problem, QWidget* parent)
    : QDialog(parent)
    , m_problem(std::move(problem))
    , m_name(new QLineEdit(name, this))
    , m_reason(new QLabel(this))
{
    setWindowTitle(title);
    setMinimumWidth(LeastWidth);
    auto* caption = new QLabel(tr("&Name"), this);
    caption->setBuddy(m_name);
    m_name->setObjectName(QStringLiteral("name"));
    m_name->setAccessibleName(tr("Name"));
    m_name->selectAll();
    m_reason->setObjectName(QStringLiteral("reason"));
    m_reason->setWordWrap(true);
    m_reason->setPalette(Theme::mutedPalette(palette()));
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Cancel, this);
    m_take = buttons->addButton(action, QDialogButtonBox::AcceptRole);
    m_take->setObjectName(QStringLiteral("take"));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(Theme::Gap, Theme::Gap, Theme::Gap, Theme::Gap);
    layout->setSpacing(Theme::Rhythm);
    layout->addWidget(caption);
    layout->addWidget(m_name);
    layout->addWidget(m_reason);
    layout->addStretch();
    layout->addWidget(buttons);
    connect(m_name, &QLineEdit::textChanged, this, &NameDialog::check);
    connect(buttons, &QDialogButtonBox::accepted, this, &NameDialog::take);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    check();
}

void NameDialog::check()
{
    const QString problem = m_problem(m_name->text());
    m_take->setEnabled(problem.isEmpty());
    // An empty field needs no reproach; a space keeps the dialog's height.
    const bool isBlank = m_name->text().trimmed().isEmpty();
    m_reason->setText(isBlank || problem.isEmpty() ? QStringLiteral(" ") : problem);
}

void NameDialog::take()
{
    Q_EMIT chosen(m_name->text().trimmed());
    accept();
}
