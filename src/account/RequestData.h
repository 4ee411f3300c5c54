// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "account/ClientCommunication.h"

/// The "data" of the requests that send more than one field. Any thread.
namespace RequestData {

using Map = QMap<QString, QVariant>;

Map authorization(const QString& clientUid, const QString& organizationId);
Map zurge(const ClientCommunication::ZurgeRequest& zurge);
Map update(const AccountIdentity& identity, const QString& targetVersion);
Map usageStats(const AccountIdentity& identity, const Map& windowOpenTimes,
               const QVariantList& events);
Map fileUpload(const QString& type);

} // namespace RequestData
