-- SPDX-License-Identifier: GPL-3.0-or-later
-- Again, for databases that skipped step 2; what they exclude stays excluded.
CREATE TABLE IF NOT EXISTS application_uptime_ignore (path VARCHAR NOT NULL);
CREATE TABLE IF NOT EXISTS application_bandwidth_ignore (path VARCHAR NOT NULL);
INSERT OR IGNORE INTO application_ignore (path) SELECT path FROM application_uptime_ignore;
INSERT OR IGNORE INTO application_ignore (path) SELECT path FROM application_bandwidth_ignore;
DROP TABLE application_uptime_ignore;
DROP TABLE application_bandwidth_ignore;

PRAGMA user_version = 4;
