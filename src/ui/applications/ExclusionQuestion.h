// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <functional>

class QWidget;

/// Asks once before applications are excluded from counting. Thread: main.
namespace ExclusionQuestion {

/// Asks about `count` applications, a single one by its `name`, over `parent`; runs `accepted`
/// where the answer is yes. Returns at once.
void ask(QWidget* parent, qsizetype count, const QString& name,
         const std::function<void()>& accepted);

} // namespace ExclusionQuestion
