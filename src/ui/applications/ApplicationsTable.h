// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/CountsTable.h"

#include <QStringList>

class ApplicationsModel;

/// The table of applications: most time in front first, filtered by name or path. From its context
/// menu applications are excluded from counting, and counted again. Thread: main.
class ApplicationsTable : public CountsTable
{
    Q_OBJECT

public:
    /// `model` must live longer.
    ApplicationsTable(ApplicationsModel& model, const QString& title, QWidget* parent = nullptr);

    /// The paths of the selected rows, in the order shown.
    QStringList selectedPaths() const;

Q_SIGNALS:
    void selectionChanged();

    /// The user wants these applications excluded from counting, which is to be confirmed.
    void exclusionWanted(const QStringList& paths);

    /// The user wants these excluded applications counted again.
    void inclusionWanted(const QStringList& paths);

protected:
    void fillMenu(QMenu& menu) override;
    void changeEvent(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void fitColumns();
    int neededWidth(int column, int padding) const;
    QString longestText(int column) const;
    void copyPaths() const;

    ApplicationsModel& m_model;
};
