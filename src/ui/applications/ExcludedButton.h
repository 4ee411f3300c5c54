// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QStringList>
#include <QToolButton>

#include <functional>

/// Says how many applications are excluded from counting, and lets each be counted again, whether
/// it has a row in a table or not. Hidden while there are none. Thread: main.
class ExcludedButton : public QToolButton
{
    Q_OBJECT

public:
    /// `name` finds the name to show for a path.
    explicit ExcludedButton(std::function<QString(const QString& path)> name,
                            QWidget* parent = nullptr);

    void setExcluded(const QStringList& paths);

Q_SIGNALS:
    /// The user wants this application counted again.
    void inclusionWanted(const QString& path);

private:
    void fillMenu();

    std::function<QString(const QString& path)> m_name;
    QStringList m_paths;
};
