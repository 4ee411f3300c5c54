// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/MessageBoxes.h"

#include <QMessageBox>
#include <QPushButton>

void MessageBoxes::showFailure(const QString& title, const QString& text)
{
    QMessageBox box(QMessageBox::Critical, title, text, QMessageBox::Close);
    box.setObjectName(QStringLiteral("failure"));
    box.setTextFormat(Qt::PlainText);
    box.exec();
}

bool MessageBoxes::confirmFreshDatabase(const QString& text)
{
    QMessageBox box(QMessageBox::Warning, tr("Database failure"), text);
    box.setObjectName(QStringLiteral("freshDatabase"));
    box.setTextFormat(Qt::PlainText);
    QPushButton* create = box.addButton(tr("Create a new database"), QMessageBox::AcceptRole);
    create->setObjectName(QStringLiteral("create"));
    QPushButton* leave = box.addButton(tr("Leave everything as it is"), QMessageBox::RejectRole);
    leave->setObjectName(QStringLiteral("leave"));
    box.setDefaultButton(leave);
    box.setEscapeButton(leave);
    box.exec();
    return box.clickedButton() == create;
}
