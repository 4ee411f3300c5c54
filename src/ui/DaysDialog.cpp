// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/DaysDialog.h"

#include "ui/Theme.h"

#include <QCalendarWidget>
#include <QDateEdit>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QPushButton>

DaysDialog::DaysDialog(const QDate& first, const QDate& last, QWidget* parent)
    : QDialog(parent)
{
    setWindowTitle(tr("Choose days"));
    auto* layout = new QFormLayout(this);
    layout->setContentsMargins(Theme::Gap, Theme::Gap, Theme::Gap, Theme::Gap);
    layout->setSpacing(Theme::Gap);
    const QDate firstOfMonth(last.year(), last.month(), 1);
    m_first = addField(QStringLiteral("firstDay"), first.isNull() ? firstOfMonth : first);
    m_last = addField(QStringLiteral("lastDay"), last);
    layout->addRow(tr("&From"), m_first);
    layout->addRow(tr("&To"), m_last);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Cancel, this);
    buttons->addButton(tr("Show these days"), QDialogButtonBox::AcceptRole);
    layout->addRow(buttons);
    connect(buttons, &QDialogButtonBox::accepted, this, [this] {
        Q_EMIT chosen(m_first->date(), m_last->date());
        accept();
    });
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
}

QDateEdit* DaysDialog::addField(const QString& name, const QDate& day)
{
    auto* field = new QDateEdit(day, this);
    field->setObjectName(name);
    field->setCalendarPopup(true);
    field->setMaximumDate(QDate::currentDate());
    field->setDisplayFormat(QStringLiteral("d MMMM yyyy"));
    field->calendarWidget()->setFirstDayOfWeek(QLocale::system().firstDayOfWeek());
    return field;
}
