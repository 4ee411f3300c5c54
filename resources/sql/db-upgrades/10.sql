-- SPDX-License-Identifier: GPL-3.0-or-later
ALTER TABLE network_interface_bandwidth ADD COLUMN hour INTEGER NOT NULL DEFAULT 0;
DROP INDEX IF EXISTS network_interface_bandwidth_day;
CREATE UNIQUE INDEX network_interface_bandwidth_day ON network_interface_bandwidth ("day", "hour", "mac_address");

ALTER TABLE application_bandwidth ADD COLUMN hour INTEGER NOT NULL DEFAULT 0;
DROP INDEX IF EXISTS application_bandwidth_day;
CREATE UNIQUE INDEX application_bandwidth_day ON application_bandwidth ("day", "hour", "path");

ALTER TABLE country_bandwidth ADD COLUMN hour INTEGER NOT NULL DEFAULT 0;
DROP INDEX IF EXISTS country_bandwidth_day;
CREATE UNIQUE INDEX country_bandwidth_day ON country_bandwidth ("day", "hour", "country");

PRAGMA user_version = 10;
