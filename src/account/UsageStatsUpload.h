// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "account/Upload.h"

#include <QDate>

#include <chrono>

/// Sends how the program itself is used, once a day: how long each window was open on each full
/// day, and what was chosen in them. What the service has is deleted here. Does nothing unless the
/// user lets usage reports be sent.
class UsageStatsUpload : public Upload
{
public:
    static constexpr std::chrono::seconds SendEvery = std::chrono::hours(24);
    static constexpr int EventsAtOnce = 2'000;

    using Upload::Upload;

    QStringList requestTypes() const override;

    void uploadUsageStats();

private:
    void answered(const UploadAnswer& answer) override;
    QVariantMap readWindowOpenTimes(const QDate& before) const;
    QVariantList readEvents();
    void deleteSent() const;

    QDate m_sentBefore;       ///< Times of earlier days were sent.
    qint64 m_sentToEvent = 0; ///< The last row sent; 0: none.
};
