// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>
#include <QPushButton>
#include <QString>

#include <optional>

/// Selects the profile whose counts the views show, or all. Hidden while there is no profile but
/// the default one. Thread: main.
class ProfileFilter : public QPushButton
{
    Q_OBJECT

public:
    struct Entry
    {
        int id = 0;
        QString name;
        friend bool operator==(const Entry&, const Entry&) = default;
    };

    explicit ProfileFilter(QWidget* parent = nullptr);

    /// The profiles to choose from, the default one included. One that was selected and is gone
    /// gives way to all.
    void setProfiles(const QList<Entry>& profiles);

    void select(std::optional<int> profileId);

    std::optional<int> selected() const { return m_selected; }

Q_SIGNALS:
    void profileChanged(std::optional<int> profileId);

private:
    QString nameOf(std::optional<int> profileId) const;
    void rebuildMenu();
    void showSelected();

    QList<Entry> m_profiles;
    std::optional<int> m_selected;
};
