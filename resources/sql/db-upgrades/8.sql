-- SPDX-License-Identifier: GPL-3.0-or-later
ALTER TABLE input_per_application ADD COLUMN distance_inches INTEGER NOT NULL DEFAULT 0;
ALTER TABLE input_per_application ADD COLUMN scrolls INTEGER NOT NULL DEFAULT 0;

PRAGMA user_version = 8;
