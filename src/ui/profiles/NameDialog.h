// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDialog>
#include <QString>

#include <functional>

class QLabel;
class QLineEdit;
class QPushButton;

/// Asks for a name, and says at once why one cannot be taken. Thread: main.
class NameDialog : public QDialog
{
    Q_OBJECT

public:
    /// Tells what is wrong with a name as a sentence for the user; empty where it can be taken.
    using Problem = std::function<QString(const QString& name)>;

    /// `action` is what the button that takes the name says.
    NameDialog(const QString& title, const QString& action, const QString& name, Problem problem,
               QWidget* parent = nullptr);

Q_SIGNALS:
    void chosen(const QString& name); ///< Trimmed, and without a problem.

private:
    void check();
    void take();

    Problem m_problem;
    QLineEdit* m_name;
    QLabel* m_reason;
    QPushButton* m_take = nullptr;
};
