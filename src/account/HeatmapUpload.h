// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "account/Upload.h"

#include <QDate>
#include <QDateTime>
#include <QHash>

class DSqlQuery;

/// Sends the heat maps: what was pressed and clicked per hour, of this computer and of each
/// application. Each kind goes on from the day on which it was sent last, in portions of whole days
/// that the service puts in the place of what it had. One kind is sent after the other.
class HeatmapUpload : public Upload
{
public:
    /// A portion ends with the day on which it reaches so many rows: some milliseconds of reading.
    static constexpr qsizetype RowsAtOnce = 2'000;
    static constexpr int PortionsAtOnce = 5; ///< Of each kind, one after the other.

    using Upload::Upload;

    QStringList requestTypes() const override;
    void forget() override;

    /// Sends the next portions of each kind that has something new. Does nothing unless
    /// `online_send_heatmaps` is set; applications take part with `online_send_applications`.
    void uploadHeatmaps();

private:
    struct Kind;

    /// Tells a portion from one that holds more of the same days.
    struct Extent
    {
        QDate first;
        QDate last;
        qsizetype rows = 0;
        qint64 count = 0;

        friend bool operator==(const Extent&, const Extent&) = default;
    };

    struct Portion
    {
        Extent extent;
        QVariantList rows;
        QDateTime mark; ///< From where to go on once the service has it.
        bool isLast = true;
    };

    static const QList<Kind>& kinds();
    void answered(const UploadAnswer& answer) override;
    void uploadFrom(qsizetype index);
    bool upload(const Kind& kind);
    Portion read(const Kind& kind) const;

    /// Empty where the row is damaged: the service would refuse all of them for it.
    static QVariantMap row(const Kind& kind, const DSqlQuery& query);

    int m_portions = 0;                 ///< Sent of the kind whose turn it is.
    QHash<QString, Portion> m_sent;     ///< By request type; without rows.
    QHash<QString, Extent> m_confirmed; ///< Likewise, in this run.
};
