// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QSortFilterProxyModel>

class ApplicationsModel;

/// The applications sorted by the raw values of a column, those that are equal by name and path in
/// either order, and filtered by a part of name or path. Thread: main.
class ApplicationsProxy : public QSortFilterProxyModel
{
    Q_OBJECT

public:
    /// `model` must live longer.
    explicit ApplicationsProxy(const ApplicationsModel& model, QObject* parent = nullptr);

protected:
    bool filterAcceptsRow(int sourceRow, const QModelIndex& sourceParent) const override;
    bool lessThan(const QModelIndex& left, const QModelIndex& right) const override;

private:
    const ApplicationsModel& m_model;
};
