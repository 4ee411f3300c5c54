-- SPDX-License-Identifier: GPL-3.0-or-later
ALTER TABLE applications ADD COLUMN sent_online INTEGER DEFAULT 0;
ALTER TABLE applications ADD COLUMN online_app_id INTEGER DEFAULT 0;

-- Two lists of excluded applications become one. Not every database has both.
CREATE TABLE IF NOT EXISTS application_uptime_ignore (path VARCHAR NOT NULL);
CREATE TABLE IF NOT EXISTS application_bandwidth_ignore (path VARCHAR NOT NULL);
INSERT OR IGNORE INTO application_ignore (path) SELECT path FROM application_uptime_ignore;
INSERT OR IGNORE INTO application_ignore (path) SELECT path FROM application_bandwidth_ignore;
DROP TABLE application_uptime_ignore;
DROP TABLE application_bandwidth_ignore;

PRAGMA user_version = 2;
