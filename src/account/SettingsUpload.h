// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "account/Upload.h"

#include <QDateTime>

/// Keeps a copy of the user's settings at the service, for another computer or a new one.
class SettingsUpload : public Upload
{
public:
    enum class When
    {
        IfChanged, ///< Since they were sent last.
        Now,
    };

    using Upload::Upload;

    /// Whether a setting never leaves this computer: what is secret (user and password at a proxy),
    /// where this computer reaches the network and the service, and what is of no use elsewhere.
    static bool staysHere(const QString& name);

    QStringList requestTypes() const override;

    void uploadApplicationSettings(When when);

private:
    void answered(const UploadAnswer& answer) override;
    QVariantMap readSettings() const;
    QVariantList readRows(const QString& sql) const;

    QDateTime m_sentAt;
};
