// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/applications/ExclusionQuestion.h"

#include "base/Format.h"

#include <QCoreApplication>
#include <QMessageBox>
#include <QPushButton>

namespace {

/// Gives the context of the translations.
struct Text
{
    Q_DECLARE_TR_FUNCTIONS(ExclusionQuestion)
};

} // namespace

void ExclusionQuestion::ask(QWidget* parent, qsizetype count, const QString& name,
                            const std::function<void()>& accepted)
{
    const QString question =
        count == 1 ? Text::tr("Exclude %1 from counting?").arg(name)
                   : Text::tr("Exclude %1 applications from counting?").arg(Format::count(count));
    auto* box = new QMessageBox(QMessageBox::Question, Text::tr("Exclude from counting"), question,
                                QMessageBox::Cancel, parent);
    box->setObjectName(QStringLiteral("confirmExclusion"));
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setTextFormat(Qt::PlainText);
    box->setInformativeText(
        Text::tr("From now on, what you do there is not counted per application. "
                 "Keys, clicks, travel and traffic still count in the totals, and what was "
                 "counted before stays. This can be undone at any time."));
    const QPushButton* exclude =
        box->addButton(Text::tr("Exclude from counting"), QMessageBox::AcceptRole);
    QObject::connect(exclude, &QPushButton::clicked, box, accepted);
    box->open();
}
