// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

/// What the database must ask or tell the user. Implemented above this room. Thread: main.
class DatabasePrompts
{
public:
    DatabasePrompts() = default;
    DatabasePrompts(const DatabasePrompts&) = delete;
    DatabasePrompts& operator=(const DatabasePrompts&) = delete;
    virtual ~DatabasePrompts() = default;

    virtual void showFailure(const QString& title, const QString& text) = 0;

    /// Asks whether to start with a new, empty database; true means yes.
    virtual bool confirmFreshDatabase(const QString& text) = 0;
};
