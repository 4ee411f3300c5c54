-- SPDX-License-Identifier: GPL-3.0-or-later
-- Runs at every start: each statement creates only what is not there yet.

CREATE TABLE IF NOT EXISTS last_update_time (
    "time" DATETIME NOT NULL
);

CREATE TABLE IF NOT EXISTS settings (
    "name" VARCHAR NOT NULL,
    "value" VARCHAR NOT NULL
);
CREATE UNIQUE INDEX IF NOT EXISTS settings_name ON settings ("name");

CREATE TABLE IF NOT EXISTS profiles (
    "id" INTEGER PRIMARY KEY AUTOINCREMENT,
    "name" VARCHAR NOT NULL,
    "active" BOOLEAN NOT NULL DEFAULT 0,
    "created_at" DATETIME,
    "updated_at" DATETIME DEFAULT CURRENT_TIMESTAMP
);
CREATE UNIQUE INDEX IF NOT EXISTS profile_name ON profiles ("name");

CREATE TABLE IF NOT EXISTS unzurged_stats (
    "name" VARCHAR NOT NULL,
    "value" VARCHAR NOT NULL
);
CREATE UNIQUE INDEX IF NOT EXISTS unzurged_stats_name ON unzurged_stats ("name");

CREATE TABLE IF NOT EXISTS applications (
    "path" VARCHAR,
    "name" VARCHAR NOT NULL DEFAULT '',
    "icon" VARBINARY DEFAULT '',
    "version" VARCHAR NOT NULL DEFAULT '',
    "sent_online" INTEGER DEFAULT 0,
    "online_app_id" INTEGER DEFAULT 0
);
CREATE UNIQUE INDEX IF NOT EXISTS applications_path ON applications ("path");

CREATE TABLE IF NOT EXISTS applications_upgrades (
    "path" VARCHAR,
    "previous_version" VARCHAR NOT NULL DEFAULT '',
    "current_version" VARCHAR NOT NULL DEFAULT '',
    "upgrade_date" DATETIME NOT NULL
);
CREATE INDEX IF NOT EXISTS applications_upgrades_path ON applications_upgrades ("path");

CREATE TABLE IF NOT EXISTS application_ignore (
    "path" VARCHAR NOT NULL
);
CREATE UNIQUE INDEX IF NOT EXISTS application_ignore_uniq ON application_ignore ("path");

CREATE TABLE IF NOT EXISTS pending_applications_stats (
    "path" VARCHAR NOT NULL,
    "keys" INTEGER NOT NULL DEFAULT 0,
    "clicks" INTEGER NOT NULL DEFAULT 0,
    "download" INTEGER NOT NULL DEFAULT 0,
    "upload" INTEGER NOT NULL DEFAULT 0,
    "uptime" INTEGER NOT NULL DEFAULT 0,
    "distance_inches" INTEGER NOT NULL DEFAULT 0,
    "scrolls" INTEGER NOT NULL DEFAULT 0
);
CREATE UNIQUE INDEX IF NOT EXISTS pending_applications_stats_path ON pending_applications_stats ("path");

CREATE TABLE IF NOT EXISTS keypresses (
    "day" DATE NOT NULL,
    "hour" INTEGER NOT NULL DEFAULT 0,
    "count" INTEGER NOT NULL DEFAULT 0,
    "profile_id" INTEGER NOT NULL DEFAULT 0
);
CREATE UNIQUE INDEX IF NOT EXISTS keypresses_day ON keypresses ("day", "hour", "profile_id");

CREATE TABLE IF NOT EXISTS keypress_frequency (
    "day" DATE NOT NULL,
    "hour" INTEGER NOT NULL DEFAULT 0,
    "key" INTEGER NOT NULL DEFAULT 0,
    "count" INTEGER NOT NULL DEFAULT 0,
    "profile_id" INTEGER NOT NULL DEFAULT 0
);
CREATE UNIQUE INDEX IF NOT EXISTS keypress_frequency_day_key ON keypress_frequency ("day", "hour", "key", "profile_id");

CREATE TABLE IF NOT EXISTS keypress_frequency_application (
    "day" DATE NOT NULL,
    "hour" INTEGER NOT NULL DEFAULT 0,
    "key" INTEGER NOT NULL DEFAULT 0,
    "count" INTEGER NOT NULL DEFAULT 0,
    "path" VARCHAR NOT NULL,
    "profile_id" INTEGER NOT NULL DEFAULT 0
);
CREATE UNIQUE INDEX IF NOT EXISTS keypress_frequency_application_day_key_path ON keypress_frequency_application ("day", "hour", "key", "path", "profile_id");

CREATE TABLE IF NOT EXISTS keycombo_frequency (
    "day" DATE NOT NULL,
    "hour" INTEGER NOT NULL DEFAULT 0,
    "combo" VARCHAR NOT NULL,
    "count" INTEGER NOT NULL DEFAULT 0,
    "profile_id" INTEGER NOT NULL DEFAULT 0
);
CREATE UNIQUE INDEX IF NOT EXISTS keycombo_frequency_day_hour_key ON keycombo_frequency ("day", "hour", "combo", "profile_id");

CREATE TABLE IF NOT EXISTS keycombo_frequency_application (
    "day" DATE NOT NULL,
    "hour" INTEGER NOT NULL DEFAULT 0,
    "combo" VARCHAR NOT NULL,
    "count" INTEGER NOT NULL DEFAULT 0,
    "path" VARCHAR NOT NULL,
    "profile_id" INTEGER NOT NULL DEFAULT 0
);
CREATE UNIQUE INDEX IF NOT EXISTS keycombo_frequency_application_day_hour_key ON keycombo_frequency_application ("day", "hour", "path", "combo", "profile_id");

CREATE TABLE IF NOT EXISTS mouseclicks (
    "day" DATE NOT NULL,
    "hour" INTEGER NOT NULL DEFAULT 0,
    "count" INTEGER NOT NULL DEFAULT 0,
    "profile_id" INTEGER NOT NULL DEFAULT 0
);
CREATE UNIQUE INDEX IF NOT EXISTS mouseclicks_day ON mouseclicks ("day", "hour", "profile_id");

CREATE TABLE IF NOT EXISTS mousepoints (
    "day" DATE NOT NULL,
    "hour" INTEGER NOT NULL DEFAULT 0,
    "x" INTEGER NOT NULL DEFAULT 0,
    "y" INTEGER NOT NULL DEFAULT 0,
    "profile_id" INTEGER NOT NULL DEFAULT 0
);
CREATE INDEX IF NOT EXISTS mousepoints_date ON mousepoints ("day");

CREATE TABLE IF NOT EXISTS mouseclicks_frequency (
    "day" DATE NOT NULL,
    "hour" INTEGER NOT NULL DEFAULT 0,
    "button" INTEGER NOT NULL DEFAULT 0,
    "count" INTEGER NOT NULL DEFAULT 0,
    "profile_id" INTEGER NOT NULL DEFAULT 0
);
CREATE UNIQUE INDEX IF NOT EXISTS mouseclicks_frequency_day_hour_button ON mouseclicks_frequency ("day", "hour", "button", "profile_id");

CREATE TABLE IF NOT EXISTS mouseclicks_frequency_application (
    "day" DATE NOT NULL,
    "hour" INTEGER NOT NULL DEFAULT 0,
    "button" INTEGER NOT NULL DEFAULT 0,
    "count" INTEGER NOT NULL DEFAULT 0,
    "path" VARCHAR NOT NULL,
    "profile_id" INTEGER NOT NULL DEFAULT 0
);
CREATE UNIQUE INDEX IF NOT EXISTS mouseclicks_frequency_application_day_key_path ON mouseclicks_frequency_application ("day", "hour", "button", "path", "profile_id");

CREATE TABLE IF NOT EXISTS input_per_application (
    "day" DATE NOT NULL,
    "hour" INTEGER NOT NULL DEFAULT 0,
    "path" VARCHAR NOT NULL DEFAULT '',
    "keys" INTEGER NOT NULL DEFAULT 0,
    "clicks" INTEGER NOT NULL DEFAULT 0,
    "distance_inches" REAL NOT NULL DEFAULT 0,
    "scrolls" INTEGER NOT NULL DEFAULT 0,
    "profile_id" INTEGER NOT NULL DEFAULT 0
);
CREATE UNIQUE INDEX IF NOT EXISTS input_per_application_day_key ON input_per_application ("day", "hour", "path", "profile_id");

CREATE TABLE IF NOT EXISTS mousescrolls (
    "day" DATE NOT NULL,
    "hour" INTEGER NOT NULL DEFAULT 0,
    "direction" INTEGER NOT NULL DEFAULT 0,
    "count" INTEGER NOT NULL DEFAULT 0,
    "profile_id" INTEGER NOT NULL DEFAULT 0
);
CREATE UNIQUE INDEX IF NOT EXISTS mousescrolls_day_direction ON mousescrolls ("day", "hour", "direction", "profile_id");

CREATE TABLE IF NOT EXISTS mousedistance (
    "day" DATE NOT NULL,
    "hour" INTEGER NOT NULL DEFAULT 0,
    "distance_inches" REAL NOT NULL DEFAULT 0,
    "profile_id" INTEGER NOT NULL DEFAULT 0
);
CREATE UNIQUE INDEX IF NOT EXISTS mousedistance_day ON mousedistance ("day", "hour", "profile_id");

CREATE TABLE IF NOT EXISTS uptimes (
    "boot_time" DATETIME NOT NULL,
    "end_time" DATETIME NOT NULL
);
CREATE UNIQUE INDEX IF NOT EXISTS uptimes_boot_time ON uptimes ("boot_time");

CREATE TABLE IF NOT EXISTS uptime_hour (
    "day" DATE NOT NULL,
    "hour" INTEGER NOT NULL,
    "msec_active" INTEGER NOT NULL DEFAULT 0,
    "profile_id" INTEGER NOT NULL DEFAULT 0
);
CREATE UNIQUE INDEX IF NOT EXISTS uptime_hour_day_hour ON uptime_hour ("day", "hour", "profile_id");

CREATE TABLE IF NOT EXISTS application_uptime (
    "last_active" DATETIME NOT NULL,
    "last_used" DATETIME,
    "time" INTEGER NOT NULL DEFAULT 0,
    "path" VARCHAR NOT NULL,
    "profile_id" INTEGER NOT NULL DEFAULT 0
);
CREATE UNIQUE INDEX IF NOT EXISTS application_uptime_path ON application_uptime ("path", "profile_id");

CREATE TABLE IF NOT EXISTS application_active_hour (
    "day" DATE NOT NULL,
    "hour" INTEGER NOT NULL,
    "seconds_active" INTEGER NOT NULL DEFAULT 0,
    "path" VARCHAR NOT NULL,
    "profile_id" INTEGER NOT NULL DEFAULT 0
);
CREATE UNIQUE INDEX IF NOT EXISTS application_active_hour_day_hour_path ON application_active_hour ("day", "hour", "path", "profile_id");

CREATE TABLE IF NOT EXISTS network_interfaces (
    "mac_address" VARCHAR NOT NULL,
    "description" VARCHAR NOT NULL DEFAULT '',
    "wifi" BOOLEAN NOT NULL DEFAULT 0,
    "ip_list" VARCHAR NOT NULL DEFAULT '',
    "last_update" DATETIME NOT NULL
);
CREATE UNIQUE INDEX IF NOT EXISTS network_interfaces_mac_address ON network_interfaces ("mac_address");

CREATE TABLE IF NOT EXISTS network_interfaces_ignore (
    "mac_address" VARCHAR NOT NULL
);
CREATE UNIQUE INDEX IF NOT EXISTS network_interfaces_ignore_uniq ON network_interfaces_ignore ("mac_address");

CREATE TABLE IF NOT EXISTS network_interface_bandwidth (
    "day" DATE NOT NULL,
    "hour" INTEGER NOT NULL,
    "download" INTEGER NOT NULL DEFAULT 0,
    "upload" INTEGER NOT NULL DEFAULT 0,
    "mac_address" VARCHAR NOT NULL
);
CREATE UNIQUE INDEX IF NOT EXISTS network_interface_bandwidth_day ON network_interface_bandwidth ("day", "hour", "mac_address");

CREATE TABLE IF NOT EXISTS application_bandwidth (
    "day" DATE NOT NULL,
    "hour" INTEGER NOT NULL,
    "download" INTEGER NOT NULL DEFAULT 0,
    "upload" INTEGER NOT NULL DEFAULT 0,
    "path" VARCHAR NOT NULL,
    "profile_id" INTEGER NOT NULL DEFAULT 0
);
CREATE UNIQUE INDEX IF NOT EXISTS application_bandwidth_day ON application_bandwidth ("day", "hour", "path", "profile_id");

CREATE TABLE IF NOT EXISTS country_bandwidth (
    "day" DATE NOT NULL,
    "hour" INTEGER NOT NULL,
    "download" INTEGER NOT NULL DEFAULT 0,
    "upload" INTEGER NOT NULL DEFAULT 0,
    "country" VARCHAR NOT NULL,
    "profile_id" INTEGER NOT NULL DEFAULT 0
);
CREATE UNIQUE INDEX IF NOT EXISTS country_bandwidth_day ON country_bandwidth ("day", "hour", "country", "profile_id");

CREATE TABLE IF NOT EXISTS network_protocol_bandwidth (
    "day" DATE NOT NULL,
    "hour" INTEGER NOT NULL DEFAULT 0,
    "download" INTEGER NOT NULL DEFAULT 0,
    "upload" INTEGER NOT NULL DEFAULT 0,
    "port_number" INTEGER NOT NULL DEFAULT 0,
    "protocol" VARCHAR NOT NULL,
    "profile_id" INTEGER NOT NULL DEFAULT 0
);
CREATE UNIQUE INDEX IF NOT EXISTS network_protocol_bandwidth_uniq ON network_protocol_bandwidth ("day", "hour", "protocol", "port_number", "profile_id");

CREATE TABLE IF NOT EXISTS fact (
    "id" VARCHAR NOT NULL,
    "type" VARCHAR NOT NULL,
    "text" VARCHAR NOT NULL,
    "data_query" VARCHAR NOT NULL,
    "condition_query" VARCHAR NOT NULL,
    "priority" INTEGER NOT NULL
);
CREATE UNIQUE INDEX IF NOT EXISTS fact_id ON fact ("id");

CREATE TABLE IF NOT EXISTS geekwindow_labels (
    "id" INTEGER PRIMARY KEY AUTOINCREMENT NOT NULL,
    "val" VARCHAR NOT NULL,
    "x" INTEGER NOT NULL,
    "y" INTEGER NOT NULL
);

CREATE TABLE IF NOT EXISTS computer_info (
    "name" VARCHAR NOT NULL,
    "value" VARCHAR NOT NULL
);
CREATE UNIQUE INDEX IF NOT EXISTS computer_info_name ON computer_info ("name");

CREATE TABLE IF NOT EXISTS milestones (
    "id" INTEGER PRIMARY KEY AUTOINCREMENT NOT NULL,
    "name" VARCHAR NOT NULL,
    "time_created" DATETIME NOT NULL,
    "time_updated" DATETIME NOT NULL,
    "time_last_triggered" DATETIME NOT NULL,
    "stats_type" VARCHAR NOT NULL,
    "stats_amount" INTEGER NOT NULL,
    "milestone_active" BOOLEAN NOT NULL DEFAULT 1,
    "last_stats_when_triggered" INTEGER NOT NULL,
    "custom_message" VARCHAR NOT NULL DEFAULT ''
);

CREATE TABLE IF NOT EXISTS milestones_log (
    "name" VARCHAR NOT NULL,
    "time_triggered" DATETIME NOT NULL,
    "stats_type" VARCHAR NOT NULL,
    "stats_amount" INTEGER NOT NULL,
    "stats_when_triggered" INTEGER NOT NULL
);

CREATE TABLE IF NOT EXISTS usage_stats_time (
    "identifier" VARCHAR NOT NULL,
    "day" DATE NOT NULL,
    "value" INTEGER NOT NULL DEFAULT 0
);
CREATE UNIQUE INDEX IF NOT EXISTS usage_stats_time_unique ON usage_stats_time ("identifier", "day");

CREATE TABLE IF NOT EXISTS usage_stats_events (
    "event_type" VARCHAR NOT NULL,
    "identifier" VARCHAR NOT NULL,
    "page_name" VARCHAR NOT NULL,
    "time_created" DATETIME NOT NULL,
    "context" VARCHAR DEFAULT ''
);

CREATE TABLE IF NOT EXISTS website_pending_messages (
    "id" INTEGER NOT NULL,
    "created_at" DATETIME NOT NULL,
    "link" VARCHAR NOT NULL DEFAULT '',
    "type" VARCHAR NOT NULL,
    "text" VARCHAR NOT NULL,
    "button_text" VARCHAR NOT NULL
);
CREATE UNIQUE INDEX IF NOT EXISTS website_pending_messages_id ON website_pending_messages ("id");
