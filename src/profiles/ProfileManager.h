// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>
#include <QObject>
#include <QString>
#include <QVariant>

#include <optional>

/// A row of the table `profiles`, as a menu or a list needs it.
struct Profile
{
    int id = 0;
    QString name;
};

/// Keeps the list of profiles, and knows under which one counts are filed (the stats profile) and
/// which one's the views show (the filter profile). Profile 0, "General", is the default and has no
/// row in the table `profiles`. Thread: main.
class ProfileManager : public QObject
{
    Q_OBJECT

public:
    static constexpr int DefaultProfileId = 0;
    static constexpr int AllProfiles = -1; ///< As the filter profile: the views show every profile.
    static constexpr int LongestName = 64; ///< Characters, by code point.

    enum class NameResult
    {
        Ok,
        Empty,     ///< Nothing that can be seen.
        TooLong,   ///< More than `LongestName`.
        Duplicate, ///< Another profile bears it.
        Failed,    ///< The database could not store it, or there is no such profile.
    };

    explicit ProfileManager(QObject* parent = nullptr);
    ~ProfileManager() override;

    /// The one manager; null before it was created.
    static ProfileManager* instance();

    int getActiveStatsProfileId() const;
    QString getActiveStatsProfileName() const;

    /// Files counts under this profile from now on, and marks it active in the database. An id that
    /// is no profile's means profile 0: counts filed under it would be in no view. While the
    /// database is lent, that waits until it is taken back.
    void setActiveStatsProfile(int id, const QString& name);

    /// Goes back to profile 0.
    void activateDefaultProfile();

    /// Reads the active profile from the database, which must be open; none means profile 0.
    void refreshProfileFromDatabase();

    /// The profile that the views show, which starts as `AllProfiles`. Kept by `Database`, in whose
    /// queries it takes effect; nothing is stored.
    void setActiveFilterProfile(int id, const QString& name);
    int getActiveFilterProfileId() const;
    QString getActiveFilterProfileName() const;

    /// The profiles beside the default one by name, each as a map of the keys "id", "name",
    /// "active", "created_at" and "updated_at".
    QVariantList getProfiles() const;

    /// The same profiles, as menus and lists need them.
    QList<Profile> profiles() const;

    bool profileExists(const QString& name) const;

    /// Names are trimmed; see `NameResult` for what is refused.
    NameResult addProfile(const QString& name);
    NameResult editProfileName(int id, const QString& name);

    /// What the profile `id`, or a new one (0), would be told of a name.
    NameResult checkName(int id, const QString& name) const;

    /// Gives what was counted under the profile to the default profile and removes it, all of it or
    /// nothing (false). Where it was the stats or the filter profile, the default one takes its
    /// place. Holds the caller up for seconds where millions of rows change hands: a user waits
    /// for a `ProfileDeletion` instead.
    bool deleteProfile(int id);

    /// The profile is gone from the database: takes note of that as `deleteProfile` does.
    void noteDeleted(int id);

    /// Carries out what waited while the database was lent.
    void databaseTakenBack();

    /// Whether the list changed since it was last sent.
    bool shouldUploadProfiles() const;
    void successFullyUploadedProfiles();

Q_SIGNALS:
    void signalActiveStatsProfileChanged(int id);
    void signalActiveFilterProfileChanged(int id);

    /// A profile was added, renamed or deleted.
    void signalProfilesChanged();

    /// The stats profile is about to change, or a profile to go: who holds counts not yet written
    /// writes them now, under the profile they were counted under.
    void signalNeedFlush();

private:
    static bool markActive(int id);
    bool isTaken(const QString& name) const;
    bool isNameOf(int id, const QString& name) const;
    NameResult check(const QString& name) const;
    void noteListChanged();

    int m_statsProfileId = DefaultProfileId;
    QString m_statsProfileName;
    QString m_filterProfileName;
    std::optional<Profile> m_wanted; ///< To become the stats profile; see `databaseTakenBack`.
};
