// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/profiles/MilestoneDialog.h"

#include "ui/Theme.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>

#include <limits>

namespace {

constexpr int LeastWidth = 420;
constexpr int AmountStep = 1000;
constexpr qint64 SuggestedAmount = 10'000;
constexpr int LongestName = 64;
constexpr int LongestMessage = 200;

} // namespace

MilestoneDialog::MilestoneDialog(const MilestoneEntry& milestone, QWidget* parent)
    : QDialog(parent)
    , m_milestone(milestone)
    , m_name(new QLineEdit(this))
    , m_type(new QComboBox(this))
    , m_amount(new QSpinBox(this))
    , m_message(new QLineEdit(this))
{
    const bool isNew = milestone.id == 0;
    setWindowTitle(isNew ? tr("Add milestone") : tr("Edit milestone"));
    setMinimumWidth(LeastWidth);
    m_name->setObjectName(QStringLiteral("name"));
    m_type->setObjectName(QStringLiteral("type"));
    m_amount->setObjectName(QStringLiteral("amount"));
    m_message->setObjectName(QStringLiteral("message"));
    m_name->setMaxLength(LongestName);
    m_message->setMaxLength(LongestMessage);
    m_message->setPlaceholderText(tr("The usual text"));
    m_amount->setRange(1, std::numeric_limits<int>::max());
    m_amount->setSingleStep(AmountStep);
    m_amount->setGroupSeparatorShown(true);
    for (const QString& type : types()) {
        m_type->addItem(typeName(type), type);
    }

    auto* form = new QFormLayout(this);
    form->setContentsMargins(Theme::Gap, Theme::Gap, Theme::Gap, Theme::Gap);
    form->setSpacing(Theme::Gap);
    form->addRow(tr("&Name"), m_name);
    form->addRow(tr("Tell me &after every"), m_amount);
    form->addRow(tr("&Counting"), m_type);
    form->addRow(tr("&Message"), m_message);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Cancel, this);
    m_take = buttons->addButton(isNew ? tr("Add milestone") : tr("Save changes"),
                                QDialogButtonBox::AcceptRole);
    m_take->setObjectName(QStringLiteral("take"));
    form->addRow(buttons);
    connect(m_name, &QLineEdit::textChanged, this, &MilestoneDialog::check);
    connect(buttons, &QDialogButtonBox::accepted, this, &MilestoneDialog::take);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    fill();
    check();
}

QStringList MilestoneDialog::types()
{
    return {QStringLiteral("Keys"), QStringLiteral("Clicks"), QStringLiteral("Downloaded MB"),
            QStringLiteral("Uploaded MB"), QStringLiteral("Uptime in Minutes")};
}

QString MilestoneDialog::typeName(const QString& type)
{
    const QStringList names{tr("keys"), tr("clicks"), tr("MB downloaded"), tr("MB uploaded"),
                            tr("minutes of uptime")};
    const qsizetype index = types().indexOf(type);
    return index >= 0 ? names.at(index) : type;
}

void MilestoneDialog::fill()
{
    m_name->setText(m_milestone.name);
    m_message->setText(m_milestone.message);
    const qint64 amount = m_milestone.amount > 0 ? m_milestone.amount : SuggestedAmount;
    m_amount->setValue(static_cast<int>(std::min<qint64>(amount, std::numeric_limits<int>::max())));
    const int type = m_type->findData(m_milestone.type);
    if (type < 0 && m_milestone.id != 0) {
        m_type->addItem(m_milestone.type, m_milestone.type);
    }
    m_type->setCurrentIndex(m_milestone.id == 0 ? 0 : m_type->findData(m_milestone.type));
}

void MilestoneDialog::check()
{
    m_take->setEnabled(!m_name->text().trimmed().isEmpty());
}

void MilestoneDialog::take()
{
    m_milestone.name = m_name->text().trimmed();
    m_milestone.type = m_type->currentData().toString();
    m_milestone.amount = m_amount->value();
    m_milestone.message = m_message->text().trimmed();
    Q_EMIT chosen(m_milestone);
    accept();
}
