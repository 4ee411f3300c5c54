// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/TestRegistry.h"
#include "ui/Card.h"
#include "ui/QueryWorker.h"
#include "ui/UiDatabase.h"
#include "ui/applications/ApplicationsTable.h"
#include "ui/applications/ApplicationsView.h"

#include <QAbstractButton>
#include <QAction>
#include <QComboBox>
#include <QMenu>
#include <QMessageBox>
#include <QSignalSpy>
#include <QTableView>
#include <QTest>
#include <QToolButton>

/// The view over a database in which the editor was used on two days and the browser on one.
struct ShownApplications
{
    explicit ShownApplications(const HistoryScope& scope);

    ApplicationsTable& table() const { return *view.findChild<ApplicationsTable*>(); }

    QTableView& rows() const { return *table().findChild<QTableView*>(); }

    QString chartTitle() const
    {
        return view.findChild<Card*>(QStringLiteral("applicationsOverTime"))->accessibleName();
    }

    static QDate day() { return {2026, 3, 10}; }

    static QString editor() { return QStringLiteral("/usr/bin/editor"); }

    static QString browser() { return QStringLiteral("/usr/bin/browser"); }

    UiDatabase database;
    QueryWorker worker{database.file()};
    ApplicationsView view;
};

ShownApplications::ShownApplications(const HistoryScope& scope)
    : view({.worker = &worker, .applicationName = nullptr, .applicationIcon = nullptr})
{
    database.addApplication(day(), 9, editor(), 1'200);
    database.addApplication(day(), 10, browser(), 300);
    database.addApplication(day().addDays(1), 9, editor(), 34);
    view.resize(900, 640);
    view.setScope(scope);
    view.show();
}

class ApplicationsViewTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void comparesTheSelectedOnes();
    void excludesOnceConfirmed_data();
    void excludesOnceConfirmed();
    void countsAgainWhatHasNoRow();
    void saysWhatWillAppear();
};

void ApplicationsViewTest::comparesTheSelectedOnes()
{
    const QDate day = ShownApplications::day();
    ShownApplications shown({.first = day, .last = day.addDays(1), .profileId = {}});
    QTRY_COMPARE(shown.rows().model()->rowCount(), 2);
    shown.view.findChild<QComboBox*>()->setCurrentText(QStringLiteral("Keys"));
    QTRY_COMPARE(shown.chartTitle(), QStringLiteral("Keys: top applications"));
    shown.rows().sortByColumn(1, Qt::DescendingOrder);
    shown.rows().selectRow(0);
    QTRY_COMPARE(shown.chartTitle(), QStringLiteral("Keys: editor"));
    const auto* chart = shown.view.findChild<TimeChart*>();
    QTRY_VERIFY2(chart->accessibleDescription().contains(QStringLiteral("1,234")),
                 qPrintable(chart->accessibleDescription()));
    shown.rows().selectAll();
    QTRY_COMPARE(shown.chartTitle(), QStringLiteral("Keys: selected applications"));
}

void ApplicationsViewTest::excludesOnceConfirmed_data()
{
    QTest::addColumn<bool>("confirm");
    QTest::newRow("confirmed") << true;
    QTest::newRow("cancelled") << false;
}

void ApplicationsViewTest::excludesOnceConfirmed()
{
    QFETCH(bool, confirm);
    ShownApplications shown({.first = {}, .last = ShownApplications::day(), .profileId = {}});
    const QSignalSpy requested(&shown.view, &ApplicationsView::exclusionRequested);
    Q_EMIT shown.table().exclusionWanted({ShownApplications::editor()});
    auto* box = shown.view.findChild<QMessageBox*>(QStringLiteral("confirmExclusion"));
    QVERIFY(box != nullptr);
    QCOMPARE(box->text(), QStringLiteral("Exclude editor from counting?"));
    QVERIFY(requested.isEmpty());
    for (QAbstractButton* button : box->buttons()) {
        if ((box->buttonRole(button) == QMessageBox::AcceptRole) == confirm) {
            button->click();
            break;
        }
    }
    QTRY_VERIFY(shown.view.findChild<QMessageBox*>() == nullptr);
    QCOMPARE(requested.size(), confirm ? 1 : 0);
    if (confirm) {
        QCOMPARE(requested.constFirst(), QVariantList({ShownApplications::editor(), true}));
    }
}

void ApplicationsViewTest::countsAgainWhatHasNoRow()
{
    ShownApplications shown({.first = {}, .last = ShownApplications::day(), .profileId = {}});
    QTRY_VERIFY(shown.table().isVisible());
    const QSignalSpy requested(&shown.view, &ApplicationsView::exclusionRequested);
    const auto* button = shown.view.findChild<QToolButton*>(QStringLiteral("excluded"));
    QVERIFY(!button->isVisible());
    const QString gone = QStringLiteral("/opt/A & B");
    shown.view.setExcluded({gone, ShownApplications::browser()});
    QVERIFY(button->isVisible());
    QCOMPARE(button->text(), QStringLiteral("Excluded applications (2)"));
    Q_EMIT button->menu()->aboutToShow();
    auto* again = button->menu()->findChild<QAction*>(gone);
    QCOMPARE(again->text(), QStringLiteral("Count A && B again"));
    again->trigger();
    QCOMPARE(requested.size(), 1);
    QCOMPARE(requested.constFirst(), QVariantList({gone, false}));
    shown.view.setExcluded({});
    QVERIFY(!button->isVisible());
}

void ApplicationsViewTest::saysWhatWillAppear()
{
    const QDate before(2020, 1, 1);
    ShownApplications shown({.first = before, .last = before, .profileId = {}});
    auto* notice = shown.view.findChild<Notice*>();
    QTRY_VERIFY(notice->isVisible());
    QVERIFY(!shown.table().isVisible());
}

REGISTER_TEST(ApplicationsViewTest);
#include "ApplicationsViewTest.moc"
