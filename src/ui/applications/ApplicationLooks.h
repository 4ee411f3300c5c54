// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/ViewContext.h"

#include <QHash>
#include <QObject>
#include <QStringList>
#include <QTimer>

/// Names and icons of applications, which cost milliseconds each to find: found once, when they are
/// first wanted, a few at a time between events, so that a table scrolls on meanwhile. What was
/// wanted last is found first, and what was scrolled past long ago not at all. Thread: main.
class ApplicationLooks : public QObject
{
    Q_OBJECT

public:
    explicit ApplicationLooks(const ViewContext& context, QObject* parent = nullptr);

    /// The name to show: `known`, the one found, or, until one is, that of the file.
    QString name(const QString& path, const QString& known) const;

    /// The icon to show: a general one until the application's own is found, or where it has none.
    QIcon icon(const QString& path) const;

    /// The icon of whatever is excluded from counting.
    const QIcon& excludedIcon() const { return m_excluded; }

    /// Has name and icon found, which `found` tells.
    void want(const QString& path);

Q_SIGNALS:
    void found(const QStringList& paths);

private:
    struct Look
    {
        QString name; ///< Empty where it has none.
        QIcon icon;
    };

    void findSome();

    ViewContext m_context;
    QIcon m_general;
    QIcon m_excluded;
    QHash<QString, Look> m_looks;
    QStringList m_wanted; ///< The last one first.
    QTimer m_timer;
};
