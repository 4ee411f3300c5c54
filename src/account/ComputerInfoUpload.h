// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "account/Upload.h"

#include <chrono>

/// Answers what this computer is: texts, and lists of maps, by name.
using ComputerFactsSource = std::function<QVariantMap()>;

/// Tells the service what this computer is and which networks it was on in the last 30 days, once
/// that differs from what it was told.
class ComputerInfoUpload : public Upload
{
public:
    enum class When
    {
        IfDue, ///< Where the last check was a day ago or was not answered.
        Now,   ///< Whether or not anything differs.
    };

    static constexpr std::chrono::seconds CheckEvery = std::chrono::hours(24);

    ComputerInfoUpload(const UploadPartners& partners, ComputerFactsSource facts);

    QStringList requestTypes() const override;

    void uploadComputerInfo(When when);

private:
    using Texts = QMap<QString, QString>;

    void answered(const UploadAnswer& answer) override;
    QVariantList readInterfaces() const;
    Texts readCopy() const;
    bool storeIfDifferent(const Texts& info) const;
    void storeCopy(const Texts& info) const;
    void sendInfo(const Texts& info);

    ComputerFactsSource m_facts;
};
