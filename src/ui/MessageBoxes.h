// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "storage/DatabasePrompts.h"

#include <QCoreApplication>

/// Tells and asks in message boxes what cannot wait: start-up failures and a lost database. Each
/// call blocks until the box is closed, since what follows depends on the answer. Thread: main.
class MessageBoxes final : public DatabasePrompts
{
    Q_DECLARE_TR_FUNCTIONS(MessageBoxes)

public:
    void showFailure(const QString& title, const QString& text) override;
    bool confirmFreshDatabase(const QString& text) override;
};
