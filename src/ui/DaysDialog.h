// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDialog>

class QDateEdit;

/// Asks for the first and the last of some days. Thread: main.
class DaysDialog : public QDialog
{
    Q_OBJECT

public:
    /// Suggests these days; a null first day stands for the last one's month.
    DaysDialog(const QDate& first, const QDate& last, QWidget* parent = nullptr);

Q_SIGNALS:
    void chosen(const QDate& first, const QDate& last);

private:
    QDateEdit* addField(const QString& name, const QDate& day);

    QDateEdit* m_first;
    QDateEdit* m_last;
};
