// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>
#include <QString>

/// Knows under which profile counts are filed. Profile 0, "General", is the default and has no row
/// in the table `profiles`. Thread: main.
class ProfileManager : public QObject
{
    Q_OBJECT

public:
    static constexpr int DefaultProfileId = 0;

    explicit ProfileManager(QObject* parent = nullptr);
    ~ProfileManager() override;

    /// The one manager; null before it was created.
    static ProfileManager* instance();

    int getActiveStatsProfileId() const;
    QString getActiveStatsProfileName() const;

    /// Files counts under this profile from now on, and marks it active in the database. An id that
    /// is no profile's means profile 0: counts filed under it would be in no view.
    void setActiveStatsProfile(int id, const QString& name);

    /// Goes back to profile 0.
    void activateDefaultProfile();

    /// Reads the active profile from the database, which must be open; none means profile 0.
    void refreshProfileFromDatabase();

Q_SIGNALS:
    void signalActiveStatsProfileChanged(int id);

private:
    static bool markActive(int id);

    int m_statsProfileId = DefaultProfileId;
    QString m_statsProfileName;
};
