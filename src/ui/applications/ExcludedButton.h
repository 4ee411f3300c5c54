// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QStringList>
#include <QToolButton>

#include <functional>

/// Says how many things (applications, say) are excluded from counting, and lets each be counted
/// again, whether it has a row in a table or not. Hidden while there are none. Thread: main.
class ExcludedButton : public QToolButton
{
    Q_OBJECT

public:
    /// `text` has a place for their number, "%1"; `name` finds the name to show for a key.
    ExcludedButton(QString text, const QString& toolTip,
                   std::function<QString(const QString& key)> name, QWidget* parent = nullptr);

    void setExcluded(const QStringList& keys);

Q_SIGNALS:
    /// The user wants this one counted again.
    void inclusionWanted(const QString& key);

private:
    void fillMenu();

    QString m_text;
    std::function<QString(const QString& key)> m_name;
    QStringList m_keys;
};
