-- SPDX-License-Identifier: GPL-3.0-or-later
ALTER TABLE application_uptime ADD COLUMN last_used DATETIME;

PRAGMA user_version = 1;
