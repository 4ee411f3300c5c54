-- SPDX-License-Identifier: GPL-3.0-or-later
ALTER TABLE keypresses ADD COLUMN hour INTEGER NOT NULL DEFAULT 0;
DROP INDEX IF EXISTS keypresses_day;
CREATE UNIQUE INDEX keypresses_day ON keypresses ("day", "hour");

ALTER TABLE keypress_frequency ADD COLUMN hour INTEGER NOT NULL DEFAULT 0;
DROP INDEX IF EXISTS keypress_frequency_day_key;
CREATE UNIQUE INDEX keypress_frequency_day_key ON keypress_frequency ("day", "hour", "key");

ALTER TABLE keypress_frequency_application ADD COLUMN hour INTEGER NOT NULL DEFAULT 0;
DROP INDEX IF EXISTS keypress_frequency_application_day_key_path;
CREATE UNIQUE INDEX keypress_frequency_application_day_key_path ON keypress_frequency_application ("day", "hour", "key", "path");

ALTER TABLE mouseclicks ADD COLUMN hour INTEGER NOT NULL DEFAULT 0;
DROP INDEX IF EXISTS mouseclicks_day;
CREATE UNIQUE INDEX mouseclicks_day ON mouseclicks ("day", "hour");

ALTER TABLE input_per_application ADD COLUMN hour INTEGER NOT NULL DEFAULT 0;
DROP INDEX IF EXISTS input_per_application_day_key;
CREATE UNIQUE INDEX input_per_application_day_key ON input_per_application ("day", "hour", "path");

PRAGMA user_version = 5;
