-- SPDX-License-Identifier: GPL-3.0-or-later
ALTER TABLE keypresses ADD COLUMN profile_id INTEGER NOT NULL DEFAULT 0;
DROP INDEX IF EXISTS keypresses_day;
CREATE UNIQUE INDEX keypresses_day ON keypresses ("day", "hour", "profile_id");

ALTER TABLE keypress_frequency ADD COLUMN profile_id INTEGER NOT NULL DEFAULT 0;
DROP INDEX IF EXISTS keypress_frequency_day_key;
CREATE UNIQUE INDEX keypress_frequency_day_key ON keypress_frequency ("day", "hour", "key", "profile_id");

ALTER TABLE keypress_frequency_application ADD COLUMN profile_id INTEGER NOT NULL DEFAULT 0;
DROP INDEX IF EXISTS keypress_frequency_application_day_key_path;
CREATE UNIQUE INDEX keypress_frequency_application_day_key_path ON keypress_frequency_application ("day", "hour", "key", "path", "profile_id");

ALTER TABLE keycombo_frequency ADD COLUMN profile_id INTEGER NOT NULL DEFAULT 0;
DROP INDEX IF EXISTS keycombo_frequency_day_hour_key;
CREATE UNIQUE INDEX keycombo_frequency_day_hour_key ON keycombo_frequency ("day", "hour", "combo", "profile_id");

ALTER TABLE keycombo_frequency_application ADD COLUMN profile_id INTEGER NOT NULL DEFAULT 0;
DROP INDEX IF EXISTS keycombo_frequency_application_day_hour_key;
CREATE UNIQUE INDEX keycombo_frequency_application_day_hour_key ON keycombo_frequency_application ("day", "hour", "path", "combo", "profile_id");

ALTER TABLE mouseclicks ADD COLUMN profile_id INTEGER NOT NULL DEFAULT 0;
DROP INDEX IF EXISTS mouseclicks_day;
CREATE UNIQUE INDEX mouseclicks_day ON mouseclicks ("day", "hour", "profile_id");

ALTER TABLE mousepoints ADD COLUMN profile_id INTEGER NOT NULL DEFAULT 0;

ALTER TABLE mouseclicks_frequency ADD COLUMN profile_id INTEGER NOT NULL DEFAULT 0;
DROP INDEX IF EXISTS mouseclicks_frequency_day_hour_button;
CREATE UNIQUE INDEX mouseclicks_frequency_day_hour_button ON mouseclicks_frequency ("day", "hour", "button", "profile_id");

ALTER TABLE mouseclicks_frequency_application ADD COLUMN profile_id INTEGER NOT NULL DEFAULT 0;
DROP INDEX IF EXISTS mouseclicks_frequency_application_day_key_path;
CREATE UNIQUE INDEX mouseclicks_frequency_application_day_key_path ON mouseclicks_frequency_application ("day", "hour", "button", "path", "profile_id");

ALTER TABLE input_per_application ADD COLUMN profile_id INTEGER NOT NULL DEFAULT 0;
DROP INDEX IF EXISTS input_per_application_day_key;
CREATE UNIQUE INDEX input_per_application_day_key ON input_per_application ("day", "hour", "path", "profile_id");

ALTER TABLE mousescrolls ADD COLUMN profile_id INTEGER NOT NULL DEFAULT 0;
DROP INDEX IF EXISTS mousescrolls_day_direction;
CREATE UNIQUE INDEX mousescrolls_day_direction ON mousescrolls ("day", "hour", "direction", "profile_id");

ALTER TABLE mousedistance ADD COLUMN profile_id INTEGER NOT NULL DEFAULT 0;
DROP INDEX IF EXISTS mousedistance_day;
CREATE UNIQUE INDEX mousedistance_day ON mousedistance ("day", "hour", "profile_id");

ALTER TABLE uptime_hour ADD COLUMN profile_id INTEGER NOT NULL DEFAULT 0;
DROP INDEX IF EXISTS uptime_hour_day_hour;
CREATE UNIQUE INDEX uptime_hour_day_hour ON uptime_hour ("day", "hour", "profile_id");

ALTER TABLE application_uptime ADD COLUMN profile_id INTEGER NOT NULL DEFAULT 0;
DROP INDEX IF EXISTS application_uptime_path;
CREATE UNIQUE INDEX application_uptime_path ON application_uptime ("path", "profile_id");

ALTER TABLE application_active_hour ADD COLUMN profile_id INTEGER NOT NULL DEFAULT 0;
DROP INDEX IF EXISTS application_active_hour_day_hour_path;
CREATE UNIQUE INDEX application_active_hour_day_hour_path ON application_active_hour ("day", "hour", "path", "profile_id");

ALTER TABLE application_bandwidth ADD COLUMN profile_id INTEGER NOT NULL DEFAULT 0;
DROP INDEX IF EXISTS application_bandwidth_day;
CREATE UNIQUE INDEX application_bandwidth_day ON application_bandwidth ("day", "hour", "path", "profile_id");

ALTER TABLE country_bandwidth ADD COLUMN profile_id INTEGER NOT NULL DEFAULT 0;
DROP INDEX IF EXISTS country_bandwidth_day;
CREATE UNIQUE INDEX country_bandwidth_day ON country_bandwidth ("day", "hour", "country", "profile_id");

ALTER TABLE network_protocol_bandwidth ADD COLUMN profile_id INTEGER NOT NULL DEFAULT 0;
DROP INDEX IF EXISTS network_protocol_bandwidth_uniq;
CREATE UNIQUE INDEX network_protocol_bandwidth_uniq ON network_protocol_bandwidth ("day", "hour", "protocol", "port_number", "profile_id");

PRAGMA user_version = 11;
