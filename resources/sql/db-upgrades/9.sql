-- SPDX-License-Identifier: GPL-3.0-or-later
ALTER TABLE pending_applications_stats ADD COLUMN distance_inches INTEGER NOT NULL DEFAULT 0;
ALTER TABLE pending_applications_stats ADD COLUMN scrolls INTEGER NOT NULL DEFAULT 0;

PRAGMA user_version = 9;
