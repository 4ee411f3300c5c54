// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/SeriesChart.h"
#include "ui/network/LiveTraffic.h"

class FiguresModel;

/// The rates of download and upload over the last minute or the last hour, as two lines.
/// Thread: main.
class LiveChart : public SeriesChart
{
    Q_OBJECT

public:
    enum class Span
    {
        Minute, ///< By the second.
        Hour,   ///< By the minute, each with its mean.
    };

    explicit LiveChart(Span span, QWidget* parent = nullptr);

    /// Shows `traffic` as of `now`, in seconds since 1970, UTC; of one interface, or of all where
    /// `macAddress` is empty.
    void setTraffic(const LiveTraffic& traffic, qint64 now, const QString& macAddress);

    /// What was shown, as a table.
    FiguresModel* model() const { return m_model; }

protected:
    QString describe(int column) const override;
    QString summary() const override;

private:
    Column columnAt(int slot) const;
    qint64 secondOf(int slot) const;
    QString timeOf(int slot) const;

    Span m_span;
    qint64 m_now = 0;
    FiguresModel* m_model;
};
