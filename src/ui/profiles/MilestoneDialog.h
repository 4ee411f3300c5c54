// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/profiles/ProfileTypes.h"

#include <QDialog>

class QComboBox;
class QLineEdit;
class QPushButton;
class QSpinBox;

/// Asks for what a milestone counts and after how many it tells. Thread: main.
class MilestoneDialog : public QDialog
{
    Q_OBJECT

public:
    /// Changes `milestone`, or adds it where its id is 0.
    explicit MilestoneDialog(const MilestoneEntry& milestone, QWidget* parent = nullptr);

    /// The stored types, in the order in which they are offered.
    static QStringList types();

    /// What a type is called: "Minutes of uptime". A type that the program does not know, as it is.
    static QString typeName(const QString& type);

Q_SIGNALS:
    void chosen(const MilestoneEntry& milestone);

private:
    void fill();
    void check();
    void take();

    MilestoneEntry m_milestone;
    QLineEdit* m_name;
    QComboBox* m_type;
    QSpinBox* m_amount;
    QLineEdit* m_message;
    QPushButton* m_take = nullptr;
};
