-- SPDX-License-Identifier: GPL-3.0-or-later
-- Runs after every opening of the connection, since these tables live as long as it does.

CREATE TEMPORARY TABLE IF NOT EXISTS application_bandwidth_second (
    "time" DATETIME NOT NULL,
    "download" INTEGER NOT NULL DEFAULT 0,
    "upload" INTEGER NOT NULL DEFAULT 0,
    "path" VARCHAR NOT NULL,
    "profile_id" INTEGER NOT NULL DEFAULT 0
);
CREATE UNIQUE INDEX IF NOT EXISTS temp.application_bandwidth_second_time_address ON application_bandwidth_second ("time", "path", "profile_id");

CREATE TEMPORARY TABLE IF NOT EXISTS network_interface_bandwidth_second (
    "time" DATETIME NOT NULL,
    "download" INTEGER NOT NULL DEFAULT 0,
    "upload" INTEGER NOT NULL DEFAULT 0,
    "mac_address" VARCHAR NOT NULL,
    "profile_id" INTEGER NOT NULL DEFAULT 0
);
CREATE UNIQUE INDEX IF NOT EXISTS temp.network_interface_bandwidth_second_time_address ON network_interface_bandwidth_second ("time", "mac_address", "profile_id");
