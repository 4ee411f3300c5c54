// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "account/Upload.h"

class ProfileManager;

/// Sends the list of profiles, once it has changed.
class ProfilesUpload : public Upload
{
public:
    /// `profiles` must outlive this object.
    ProfilesUpload(const UploadPartners& partners, ProfileManager& profiles);

    QStringList requestTypes() const override;

    void uploadProfiles();

private:
    void answered(const UploadAnswer& answer) override;

    ProfileManager& m_profiles;
    QVariantList m_sent;
};
