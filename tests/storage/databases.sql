-- SPDX-License-Identifier: GPL-3.0-or-later
-- Databases as clients of the versions 1 to 10 left them, with rows in every table. Each heading
-- names the versions that the tables below it belong to.

-- Version 1
CREATE TABLE applications ("path" VARCHAR, "name" VARCHAR NOT NULL DEFAULT '', "icon" VARBINARY DEFAULT '');
CREATE UNIQUE INDEX applications_path ON applications ("path");
INSERT INTO applications VALUES ('path 1', 'name 1', x'89504e47'), ('path 2', 'name 2', x'89504e47');
CREATE TABLE application_uptime_ignore (path VARCHAR NOT NULL);
INSERT INTO application_uptime_ignore VALUES ('/opt/both'), ('/opt/uptime');
CREATE TABLE application_bandwidth_ignore (path VARCHAR NOT NULL);
INSERT INTO application_bandwidth_ignore VALUES ('/opt/both'), ('/opt/bandwidth');

-- Versions 1 to 4
CREATE TABLE keypresses ("day" DATE NOT NULL, "count" INTEGER NOT NULL DEFAULT 0);
CREATE UNIQUE INDEX keypresses_day ON keypresses ("day");
INSERT INTO keypresses VALUES ('2016-03-01', 9007199254740993), ('2016-03-02', 9007199254740994);
CREATE TABLE keypress_frequency ("day" DATE NOT NULL, "key" INTEGER NOT NULL DEFAULT 0, "count" INTEGER NOT NULL DEFAULT 0);
CREATE UNIQUE INDEX keypress_frequency_day_key ON keypress_frequency ("day", "key");
INSERT INTO keypress_frequency VALUES ('2016-03-01', 1, 9007199254740993), ('2016-03-02', 2, 9007199254740994);
CREATE TABLE keypress_frequency_application ("day" DATE NOT NULL, "key" INTEGER NOT NULL DEFAULT 0, "count" INTEGER NOT NULL DEFAULT 0, "path" VARCHAR NOT NULL);
CREATE UNIQUE INDEX keypress_frequency_application_day_key_path ON keypress_frequency_application ("day", "key", "path");
INSERT INTO keypress_frequency_application VALUES ('2016-03-01', 1, 9007199254740993, 'path 1'), ('2016-03-02', 2, 9007199254740994, 'path 2');
CREATE TABLE mouseclicks ("day" DATE NOT NULL, "count" INTEGER NOT NULL DEFAULT 0);
CREATE UNIQUE INDEX mouseclicks_day ON mouseclicks ("day");
INSERT INTO mouseclicks VALUES ('2016-03-01', 9007199254740993), ('2016-03-02', 9007199254740994);
CREATE TABLE input_per_application ("day" DATE NOT NULL, "path" VARCHAR NOT NULL DEFAULT '', "keys" INTEGER NOT NULL DEFAULT 0, "clicks" INTEGER NOT NULL DEFAULT 0);
CREATE UNIQUE INDEX input_per_application_day_key ON input_per_application ("day", "path");
INSERT INTO input_per_application VALUES ('2016-03-01', 'path 1', 1, 1), ('2016-03-02', 'path 2', 2, 2);

-- Versions 1 to 5
CREATE TABLE milestones ("id" INTEGER PRIMARY KEY AUTOINCREMENT NOT NULL, "name" VARCHAR NOT NULL, "time_created" DATETIME NOT NULL, "time_updated" DATETIME NOT NULL, "time_last_triggered" DATETIME NOT NULL, "stats_type" VARCHAR NOT NULL, "stats_amount" INTEGER NOT NULL, "milestone_active" BOOLEAN NOT NULL DEFAULT 1, "last_stats_when_triggered" INTEGER NOT NULL);
INSERT INTO milestones VALUES (1, 'name 1', '2016-03-01 12:30:00', '2016-03-01 12:30:00', '2016-03-01 12:30:00', 'stats type 1', 1, 0, 1), (2, 'name 2', '2016-03-02 12:30:00', '2016-03-02 12:30:00', '2016-03-02 12:30:00', 'stats type 2', 2, 1, 2);

-- Versions 1 to 6
CREATE TABLE mousepoints ("day" DATE NOT NULL, "x" INTEGER NOT NULL DEFAULT 0, "y" INTEGER NOT NULL DEFAULT 0);
CREATE INDEX mousepoints_date ON mousepoints ("day");
INSERT INTO mousepoints VALUES ('2016-03-01', 1, 1), ('2016-03-02', 2, 2);

-- Versions 1 to 8
CREATE TABLE pending_applications_stats ("path" VARCHAR NOT NULL, "keys" INTEGER NOT NULL DEFAULT 0, "clicks" INTEGER NOT NULL DEFAULT 0, "download" INTEGER NOT NULL DEFAULT 0, "upload" INTEGER NOT NULL DEFAULT 0, "uptime" INTEGER NOT NULL DEFAULT 0);
CREATE UNIQUE INDEX pending_applications_stats_path ON pending_applications_stats ("path");
INSERT INTO pending_applications_stats VALUES ('path 1', 1, 1, 1, 1, 1), ('path 2', 2, 2, 2, 2, 2);

-- Versions 1 to 9
CREATE TABLE network_interface_bandwidth ("day" DATE NOT NULL, "download" INTEGER NOT NULL DEFAULT 0, "upload" INTEGER NOT NULL DEFAULT 0, "mac_address" VARCHAR NOT NULL);
CREATE UNIQUE INDEX network_interface_bandwidth_day ON network_interface_bandwidth ("day", "mac_address");
INSERT INTO network_interface_bandwidth VALUES ('2016-03-01', 1, 1, 'mac address 1'), ('2016-03-02', 2, 2, 'mac address 2');
CREATE TABLE application_bandwidth ("day" DATE NOT NULL, "download" INTEGER NOT NULL DEFAULT 0, "upload" INTEGER NOT NULL DEFAULT 0, "path" VARCHAR NOT NULL);
CREATE UNIQUE INDEX application_bandwidth_day ON application_bandwidth ("day", "path");
INSERT INTO application_bandwidth VALUES ('2016-03-01', 1, 1, 'path 1'), ('2016-03-02', 2, 2, 'path 2');
CREATE TABLE country_bandwidth ("day" DATE NOT NULL, "download" INTEGER NOT NULL DEFAULT 0, "upload" INTEGER NOT NULL DEFAULT 0, "country" VARCHAR NOT NULL);
CREATE UNIQUE INDEX country_bandwidth_day ON country_bandwidth ("day", "country");
INSERT INTO country_bandwidth VALUES ('2016-03-01', 1, 1, 'country 1'), ('2016-03-02', 2, 2, 'country 2');

-- Versions 1 to 10
CREATE TABLE last_update_time ("time" DATETIME NOT NULL);
INSERT INTO last_update_time VALUES ('2016-03-01 12:30:00'), ('2016-03-02 12:30:00');
CREATE TABLE settings ("name" VARCHAR NOT NULL, "value" VARCHAR NOT NULL);
CREATE UNIQUE INDEX settings_name ON settings ("name");
INSERT INTO settings VALUES ('name 1', 'value 1'), ('name 2', 'value 2');
CREATE TABLE profiles ("id" INTEGER PRIMARY KEY AUTOINCREMENT, "name" VARCHAR NOT NULL, "active" BOOLEAN NOT NULL DEFAULT 0, "created_at" DATETIME, "updated_at" DATETIME DEFAULT CURRENT_TIMESTAMP);
CREATE UNIQUE INDEX profile_name ON profiles ("name");
INSERT INTO profiles VALUES (1, 'name 1', 0, '2016-03-01 12:30:00', '2016-03-01 12:30:00'), (2, 'name 2', 1, '2016-03-02 12:30:00', '2016-03-02 12:30:00');
CREATE TABLE unzurged_stats ("name" VARCHAR NOT NULL, "value" VARCHAR NOT NULL);
CREATE UNIQUE INDEX unzurged_stats_name ON unzurged_stats ("name");
INSERT INTO unzurged_stats VALUES ('name 1', 'value 1'), ('name 2', 'value 2');
CREATE TABLE applications_upgrades ("path" VARCHAR, "previous_version" VARCHAR NOT NULL DEFAULT '', "current_version" VARCHAR NOT NULL DEFAULT '', "upgrade_date" DATETIME NOT NULL);
CREATE INDEX applications_upgrades_path ON applications_upgrades ("path");
INSERT INTO applications_upgrades VALUES ('path 1', 'previous version 1', 'current version 1', '2016-03-01 12:30:00'), ('path 2', 'previous version 2', 'current version 2', '2016-03-02 12:30:00');
CREATE TABLE application_ignore ("path" VARCHAR NOT NULL);
CREATE UNIQUE INDEX application_ignore_uniq ON application_ignore ("path");
INSERT INTO application_ignore VALUES ('path 1'), ('path 2');
CREATE TABLE uptimes ("boot_time" DATETIME NOT NULL, "end_time" DATETIME NOT NULL);
CREATE UNIQUE INDEX uptimes_boot_time ON uptimes ("boot_time");
INSERT INTO uptimes VALUES ('2016-03-01 12:30:00', '2016-03-01 12:30:00'), ('2016-03-02 12:30:00', '2016-03-02 12:30:00');
CREATE TABLE network_interfaces ("mac_address" VARCHAR NOT NULL, "description" VARCHAR NOT NULL DEFAULT '', "wifi" BOOLEAN NOT NULL DEFAULT 0, "ip_list" VARCHAR NOT NULL DEFAULT '', "last_update" DATETIME NOT NULL);
CREATE UNIQUE INDEX network_interfaces_mac_address ON network_interfaces ("mac_address");
INSERT INTO network_interfaces VALUES ('mac address 1', 'description 1', 0, 'ip list 1', '2016-03-01 12:30:00'), ('mac address 2', 'description 2', 1, 'ip list 2', '2016-03-02 12:30:00');
CREATE TABLE network_interfaces_ignore ("mac_address" VARCHAR NOT NULL);
CREATE UNIQUE INDEX network_interfaces_ignore_uniq ON network_interfaces_ignore ("mac_address");
INSERT INTO network_interfaces_ignore VALUES ('mac address 1'), ('mac address 2');
CREATE TABLE fact ("id" VARCHAR NOT NULL, "type" VARCHAR NOT NULL, "text" VARCHAR NOT NULL, "data_query" VARCHAR NOT NULL, "condition_query" VARCHAR NOT NULL, "priority" INTEGER NOT NULL);
CREATE UNIQUE INDEX fact_id ON fact ("id");
INSERT INTO fact VALUES ('id 1', 'type 1', 'text 1', 'data query 1', 'condition query 1', 1), ('id 2', 'type 2', 'text 2', 'data query 2', 'condition query 2', 2);
CREATE TABLE geekwindow_labels ("id" INTEGER PRIMARY KEY AUTOINCREMENT NOT NULL, "val" VARCHAR NOT NULL, "x" INTEGER NOT NULL, "y" INTEGER NOT NULL);
INSERT INTO geekwindow_labels VALUES (1, 'val 1', 1, 1), (2, 'val 2', 2, 2);
CREATE TABLE computer_info ("name" VARCHAR NOT NULL, "value" VARCHAR NOT NULL);
CREATE UNIQUE INDEX computer_info_name ON computer_info ("name");
INSERT INTO computer_info VALUES ('name 1', 'value 1'), ('name 2', 'value 2');
CREATE TABLE milestones_log ("name" VARCHAR NOT NULL, "time_triggered" DATETIME NOT NULL, "stats_type" VARCHAR NOT NULL, "stats_amount" INTEGER NOT NULL, "stats_when_triggered" INTEGER NOT NULL);
INSERT INTO milestones_log VALUES ('name 1', '2016-03-01 12:30:00', 'stats type 1', 1, 1), ('name 2', '2016-03-02 12:30:00', 'stats type 2', 2, 2);
CREATE TABLE usage_stats_time ("identifier" VARCHAR NOT NULL, "day" DATE NOT NULL, "value" INTEGER NOT NULL DEFAULT 0);
CREATE UNIQUE INDEX usage_stats_time_unique ON usage_stats_time ("identifier", "day");
INSERT INTO usage_stats_time VALUES ('identifier 1', '2016-03-01', 1), ('identifier 2', '2016-03-02', 2);
CREATE TABLE usage_stats_events ("event_type" VARCHAR NOT NULL, "identifier" VARCHAR NOT NULL, "page_name" VARCHAR NOT NULL, "time_created" DATETIME NOT NULL, "context" VARCHAR DEFAULT '');
INSERT INTO usage_stats_events VALUES ('event type 1', 'identifier 1', 'page name 1', '2016-03-01 12:30:00', 'context 1'), ('event type 2', 'identifier 2', 'page name 2', '2016-03-02 12:30:00', 'context 2');
CREATE TABLE website_pending_messages ("id" INTEGER NOT NULL, "created_at" DATETIME NOT NULL, "link" VARCHAR NOT NULL DEFAULT '', "type" VARCHAR NOT NULL, "text" VARCHAR NOT NULL, "button_text" VARCHAR NOT NULL);
CREATE UNIQUE INDEX website_pending_messages_id ON website_pending_messages ("id");
INSERT INTO website_pending_messages VALUES (1, '2016-03-01 12:30:00', 'link 1', 'type 1', 'text 1', 'button text 1'), (2, '2016-03-02 12:30:00', 'link 2', 'type 2', 'text 2', 'button text 2');
CREATE TABLE keycombo_frequency ("day" DATE NOT NULL, "hour" INTEGER NOT NULL DEFAULT 0, "combo" VARCHAR NOT NULL, "count" INTEGER NOT NULL DEFAULT 0);
CREATE UNIQUE INDEX keycombo_frequency_day_hour_key ON keycombo_frequency ("day", "hour", "combo");
INSERT INTO keycombo_frequency VALUES ('2016-03-01', 20, 'combo 1', 9007199254740993), ('2016-03-02', 21, 'combo 2', 9007199254740994);
CREATE TABLE keycombo_frequency_application ("day" DATE NOT NULL, "hour" INTEGER NOT NULL DEFAULT 0, "combo" VARCHAR NOT NULL, "count" INTEGER NOT NULL DEFAULT 0, "path" VARCHAR NOT NULL);
CREATE UNIQUE INDEX keycombo_frequency_application_day_hour_key ON keycombo_frequency_application ("day", "hour", "path", "combo");
INSERT INTO keycombo_frequency_application VALUES ('2016-03-01', 20, 'combo 1', 9007199254740993, 'path 1'), ('2016-03-02', 21, 'combo 2', 9007199254740994, 'path 2');
CREATE TABLE mouseclicks_frequency ("day" DATE NOT NULL, "hour" INTEGER NOT NULL DEFAULT 0, "button" INTEGER NOT NULL DEFAULT 0, "count" INTEGER NOT NULL DEFAULT 0);
CREATE UNIQUE INDEX mouseclicks_frequency_day_hour_button ON mouseclicks_frequency ("day", "hour", "button");
INSERT INTO mouseclicks_frequency VALUES ('2016-03-01', 20, 1, 9007199254740993), ('2016-03-02', 21, 2, 9007199254740994);
CREATE TABLE mouseclicks_frequency_application ("day" DATE NOT NULL, "hour" INTEGER NOT NULL DEFAULT 0, "button" INTEGER NOT NULL DEFAULT 0, "count" INTEGER NOT NULL DEFAULT 0, "path" VARCHAR NOT NULL);
CREATE UNIQUE INDEX mouseclicks_frequency_application_day_key_path ON mouseclicks_frequency_application ("day", "hour", "button", "path");
INSERT INTO mouseclicks_frequency_application VALUES ('2016-03-01', 20, 1, 9007199254740993, 'path 1'), ('2016-03-02', 21, 2, 9007199254740994, 'path 2');
CREATE TABLE mousescrolls ("day" DATE NOT NULL, "hour" INTEGER NOT NULL DEFAULT 0, "direction" INTEGER NOT NULL DEFAULT 0, "count" INTEGER NOT NULL DEFAULT 0);
CREATE UNIQUE INDEX mousescrolls_day_direction ON mousescrolls ("day", "hour", "direction");
INSERT INTO mousescrolls VALUES ('2016-03-01', 20, 1, 9007199254740993), ('2016-03-02', 21, 2, 9007199254740994);
CREATE TABLE mousedistance ("day" DATE NOT NULL, "hour" INTEGER NOT NULL DEFAULT 0, "distance_inches" REAL NOT NULL DEFAULT 0);
CREATE UNIQUE INDEX mousedistance_day ON mousedistance ("day", "hour");
INSERT INTO mousedistance VALUES ('2016-03-01', 20, 1.5), ('2016-03-02', 21, 2.5);
CREATE TABLE uptime_hour ("day" DATE NOT NULL, "hour" INTEGER NOT NULL, "msec_active" INTEGER NOT NULL DEFAULT 0);
CREATE UNIQUE INDEX uptime_hour_day_hour ON uptime_hour ("day", "hour");
INSERT INTO uptime_hour VALUES ('2016-03-01', 20, 1), ('2016-03-02', 21, 2);
CREATE TABLE application_uptime ("last_active" DATETIME NOT NULL, "time" INTEGER NOT NULL DEFAULT 0, "path" VARCHAR NOT NULL, "last_used" DATETIME);
CREATE UNIQUE INDEX application_uptime_path ON application_uptime ("path");
INSERT INTO application_uptime VALUES ('2016-03-01 12:30:00', 1, 'path 1', '2016-03-01 12:30:00'), ('2016-03-02 12:30:00', 2, 'path 2', '2016-03-02 12:30:00');
CREATE TABLE application_active_hour ("day" DATE NOT NULL, "hour" INTEGER NOT NULL, "seconds_active" INTEGER NOT NULL DEFAULT 0, "path" VARCHAR NOT NULL);
CREATE UNIQUE INDEX application_active_hour_day_hour_path ON application_active_hour ("day", "hour", "path");
INSERT INTO application_active_hour VALUES ('2016-03-01', 20, 1, 'path 1'), ('2016-03-02', 21, 2, 'path 2');
CREATE TABLE network_protocol_bandwidth ("day" DATE NOT NULL, "hour" INTEGER NOT NULL DEFAULT 0, "download" INTEGER NOT NULL DEFAULT 0, "upload" INTEGER NOT NULL DEFAULT 0, "port_number" INTEGER NOT NULL DEFAULT 0, "protocol" VARCHAR NOT NULL);
CREATE UNIQUE INDEX network_protocol_bandwidth_uniq ON network_protocol_bandwidth ("day", "hour", "protocol", "port_number");
INSERT INTO network_protocol_bandwidth VALUES ('2016-03-01', 20, 1, 1, 1, 'protocol 1'), ('2016-03-02', 21, 2, 2, 2, 'protocol 2');

-- Version 2
CREATE TABLE applications ("path" VARCHAR, "name" VARCHAR NOT NULL DEFAULT '', "icon" VARBINARY DEFAULT '', "sent_online" INTEGER DEFAULT 0, "online_app_id" INTEGER DEFAULT 0);
CREATE UNIQUE INDEX applications_path ON applications ("path");
INSERT INTO applications VALUES ('path 1', 'name 1', x'89504e47', 1, 1), ('path 2', 'name 2', x'89504e47', 2, 2);

-- Version 3
CREATE TABLE application_uptime_ignore (path VARCHAR NOT NULL);
INSERT INTO application_uptime_ignore VALUES ('/opt/left');

-- Versions 3 to 10
CREATE TABLE applications ("path" VARCHAR, "name" VARCHAR NOT NULL DEFAULT '', "icon" VARBINARY DEFAULT '', "sent_online" INTEGER DEFAULT 0, "online_app_id" INTEGER DEFAULT 0, "version" VARCHAR NOT NULL DEFAULT '');
CREATE UNIQUE INDEX applications_path ON applications ("path");
INSERT INTO applications VALUES ('path 1', 'name 1', x'89504e47', 1, 1, 'version 1'), ('path 2', 'name 2', x'89504e47', 2, 2, 'version 2');

-- Versions 5 to 7
CREATE TABLE input_per_application ("day" DATE NOT NULL, "path" VARCHAR NOT NULL DEFAULT '', "keys" INTEGER NOT NULL DEFAULT 0, "clicks" INTEGER NOT NULL DEFAULT 0, "hour" INTEGER NOT NULL DEFAULT 0);
CREATE UNIQUE INDEX input_per_application_day_key ON input_per_application ("day", "hour", "path");
INSERT INTO input_per_application VALUES ('2016-03-01', 'path 1', 1, 1, 20), ('2016-03-02', 'path 2', 2, 2, 21);

-- Versions 5 to 10
CREATE TABLE keypresses ("day" DATE NOT NULL, "count" INTEGER NOT NULL DEFAULT 0, "hour" INTEGER NOT NULL DEFAULT 0);
CREATE UNIQUE INDEX keypresses_day ON keypresses ("day", "hour");
INSERT INTO keypresses VALUES ('2016-03-01', 9007199254740993, 20), ('2016-03-02', 9007199254740994, 21);
CREATE TABLE keypress_frequency ("day" DATE NOT NULL, "key" INTEGER NOT NULL DEFAULT 0, "count" INTEGER NOT NULL DEFAULT 0, "hour" INTEGER NOT NULL DEFAULT 0);
CREATE UNIQUE INDEX keypress_frequency_day_key ON keypress_frequency ("day", "hour", "key");
INSERT INTO keypress_frequency VALUES ('2016-03-01', 1, 9007199254740993, 20), ('2016-03-02', 2, 9007199254740994, 21);
CREATE TABLE keypress_frequency_application ("day" DATE NOT NULL, "key" INTEGER NOT NULL DEFAULT 0, "count" INTEGER NOT NULL DEFAULT 0, "path" VARCHAR NOT NULL, "hour" INTEGER NOT NULL DEFAULT 0);
CREATE UNIQUE INDEX keypress_frequency_application_day_key_path ON keypress_frequency_application ("day", "hour", "key", "path");
INSERT INTO keypress_frequency_application VALUES ('2016-03-01', 1, 9007199254740993, 'path 1', 20), ('2016-03-02', 2, 9007199254740994, 'path 2', 21);
CREATE TABLE mouseclicks ("day" DATE NOT NULL, "count" INTEGER NOT NULL DEFAULT 0, "hour" INTEGER NOT NULL DEFAULT 0);
CREATE UNIQUE INDEX mouseclicks_day ON mouseclicks ("day", "hour");
INSERT INTO mouseclicks VALUES ('2016-03-01', 9007199254740993, 20), ('2016-03-02', 9007199254740994, 21);

-- Versions 6 to 10
CREATE TABLE milestones ("id" INTEGER PRIMARY KEY AUTOINCREMENT NOT NULL, "name" VARCHAR NOT NULL, "time_created" DATETIME NOT NULL, "time_updated" DATETIME NOT NULL, "time_last_triggered" DATETIME NOT NULL, "stats_type" VARCHAR NOT NULL, "stats_amount" INTEGER NOT NULL, "milestone_active" BOOLEAN NOT NULL DEFAULT 1, "last_stats_when_triggered" INTEGER NOT NULL, "custom_message" VARCHAR NOT NULL DEFAULT '');
INSERT INTO milestones VALUES (1, 'name 1', '2016-03-01 12:30:00', '2016-03-01 12:30:00', '2016-03-01 12:30:00', 'stats type 1', 1, 0, 1, 'custom message 1'), (2, 'name 2', '2016-03-02 12:30:00', '2016-03-02 12:30:00', '2016-03-02 12:30:00', 'stats type 2', 2, 1, 2, 'custom message 2');

-- Versions 7 to 10
CREATE TABLE mousepoints ("day" DATE NOT NULL, "x" INTEGER NOT NULL DEFAULT 0, "y" INTEGER NOT NULL DEFAULT 0, "hour" INTEGER NOT NULL DEFAULT 0);
CREATE INDEX mousepoints_date ON mousepoints ("day");
INSERT INTO mousepoints VALUES ('2016-03-01', 1, 1, 20), ('2016-03-02', 2, 2, 21);

-- Versions 8 to 10
CREATE TABLE input_per_application ("day" DATE NOT NULL, "path" VARCHAR NOT NULL DEFAULT '', "keys" INTEGER NOT NULL DEFAULT 0, "clicks" INTEGER NOT NULL DEFAULT 0, "hour" INTEGER NOT NULL DEFAULT 0, "distance_inches" INTEGER NOT NULL DEFAULT 0, "scrolls" INTEGER NOT NULL DEFAULT 0);
CREATE UNIQUE INDEX input_per_application_day_key ON input_per_application ("day", "hour", "path");
INSERT INTO input_per_application VALUES ('2016-03-01', 'path 1', 1, 1, 20, 1, 1), ('2016-03-02', 'path 2', 2, 2, 21, 2, 2);

-- Versions 9 to 10
CREATE TABLE pending_applications_stats ("path" VARCHAR NOT NULL, "keys" INTEGER NOT NULL DEFAULT 0, "clicks" INTEGER NOT NULL DEFAULT 0, "download" INTEGER NOT NULL DEFAULT 0, "upload" INTEGER NOT NULL DEFAULT 0, "uptime" INTEGER NOT NULL DEFAULT 0, "distance_inches" INTEGER NOT NULL DEFAULT 0, "scrolls" INTEGER NOT NULL DEFAULT 0);
CREATE UNIQUE INDEX pending_applications_stats_path ON pending_applications_stats ("path");
INSERT INTO pending_applications_stats VALUES ('path 1', 1, 1, 1, 1, 1, 1, 1), ('path 2', 2, 2, 2, 2, 2, 2, 2);

-- Version 10
CREATE TABLE network_interface_bandwidth ("day" DATE NOT NULL, "download" INTEGER NOT NULL DEFAULT 0, "upload" INTEGER NOT NULL DEFAULT 0, "mac_address" VARCHAR NOT NULL, "hour" INTEGER NOT NULL DEFAULT 0);
CREATE UNIQUE INDEX network_interface_bandwidth_day ON network_interface_bandwidth ("day", "hour", "mac_address");
INSERT INTO network_interface_bandwidth VALUES ('2016-03-01', 1, 1, 'mac address 1', 20), ('2016-03-02', 2, 2, 'mac address 2', 21);
CREATE TABLE application_bandwidth ("day" DATE NOT NULL, "download" INTEGER NOT NULL DEFAULT 0, "upload" INTEGER NOT NULL DEFAULT 0, "path" VARCHAR NOT NULL, "hour" INTEGER NOT NULL DEFAULT 0);
CREATE UNIQUE INDEX application_bandwidth_day ON application_bandwidth ("day", "hour", "path");
INSERT INTO application_bandwidth VALUES ('2016-03-01', 1, 1, 'path 1', 20), ('2016-03-02', 2, 2, 'path 2', 21);
CREATE TABLE country_bandwidth ("day" DATE NOT NULL, "download" INTEGER NOT NULL DEFAULT 0, "upload" INTEGER NOT NULL DEFAULT 0, "country" VARCHAR NOT NULL, "hour" INTEGER NOT NULL DEFAULT 0);
CREATE UNIQUE INDEX country_bandwidth_day ON country_bandwidth ("day", "hour", "country");
INSERT INTO country_bandwidth VALUES ('2016-03-01', 1, 1, 'country 1', 20), ('2016-03-02', 2, 2, 'country 2', 21);
