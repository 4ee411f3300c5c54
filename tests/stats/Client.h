// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "account/LocalStats.h"
#include "profiles/ProfileManager.h"
#include "support/FakeSystem.h"
#include "support/TestDatabase.h"

/// What the statistics find around them: a new database, the account totals, the profiles, and a
/// machine that the test sets up.
class Client : public TestDatabase
{
public:
    Client() { totals.setup(directory()); }

    LocalStats totals;
    ProfileManager profiles;
    FakeSystem system;
};
