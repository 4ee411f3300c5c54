// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QIcon>
#include <QString>

#include <functional>

class QueryWorker;

/// What every view is made with. Plain value; the worker outlives the views.
struct ViewContext
{
    QueryWorker* worker = nullptr;

    /// Finds the name to show for an application's executable path. Called on the main thread.
    std::function<QString(const QString& path)> applicationName;

    /// Finds its icon; a null one where it has none. Called on the main thread.
    std::function<QIcon(const QString& path)> applicationIcon;
};
