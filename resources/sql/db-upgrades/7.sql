-- SPDX-License-Identifier: GPL-3.0-or-later
ALTER TABLE mousepoints ADD COLUMN hour INTEGER NOT NULL DEFAULT 0;

PRAGMA user_version = 7;
