-- SPDX-License-Identifier: GPL-3.0-or-later
ALTER TABLE applications ADD COLUMN version VARCHAR NOT NULL DEFAULT '';

PRAGMA user_version = 3;
