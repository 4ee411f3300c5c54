-- SPDX-License-Identifier: GPL-3.0-or-later
ALTER TABLE milestones ADD COLUMN custom_message VARCHAR NOT NULL DEFAULT '';

PRAGMA user_version = 6;
