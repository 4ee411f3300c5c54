// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "account/Upload.h"

#include <QDate>

/// Tells the service of applications that it does not know yet, and keeps the ids by which it knows
/// them. One that the service gives no id is offered again on another day.
class ApplicationsUpload : public Upload
{
public:
    static constexpr int AtOnce = 500;

    using Upload::Upload;

    QStringList requestTypes() const override;

    /// Does nothing unless `online_send_applications` is set. Excluded applications stay here.
    void uploadApplications();

private:
    void answered(const UploadAnswer& answer) override;
    QVariantList readNew();
    void storeOnlineIds(const QList<QVariantMap>& applications) const;

    QDate m_offeredOn;      ///< The day of what follows.
    qint64 m_offeredTo = 0; ///< The last row that the service was offered.
    qint64 m_sentTo = 0;    ///< The last row of the request under way.
};
