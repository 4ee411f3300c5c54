// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "service/RequestShapes.h"
#include "service/ServiceDatabase.h"

#include <QJsonObject>
#include <QString>

/// What a computer uploads beside its counts.
class ServiceUploads
{
public:
    explicit ServiceUploads(ServiceDatabase& database);

    /// Replaces the days that the heat map covers.
    void keepHeatmap(qint64 computerId, const HeatmapKind& kind, const QJsonObject& heatmap);

    qint64 applicationId(const QJsonObject& application); ///< Given where there is none yet.

    void keepComputerInfo(qint64 computerId, const QJsonObject& info);
    bool hasComputerInfo(qint64 computerId);

    void keepProfiles(qint64 computerId, const QJsonArray& profiles);

    void keepClientSettings(qint64 computerId, const QJsonObject& settings);
    QJsonObject clientSettings(qint64 accountId); ///< Those kept last; empty where there are none.

    void keepFile(qint64 computerId, const QString& type, const QString& fileName,
                  const QByteArray& content);

    void keepReport(const QString& type, const QJsonObject& data); ///< Of nobody in particular.

private:
    ServiceDatabase& m_database;
};
