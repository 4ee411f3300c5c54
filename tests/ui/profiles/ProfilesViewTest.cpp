// SPDX-License-Identifier: GPL-3.0-or-later
#include "../UiDatabase.h"
#include "support/TestRegistry.h"
#include "ui/profiles/DeletionDialog.h"
#include "ui/profiles/MilestoneDialog.h"
#include "ui/profiles/NameDialog.h"
#include "ui/profiles/ProfilesView.h"

#include <QAction>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPointer>
#include <QProgressBar>
#include <QPushButton>
#include <QSignalSpy>
#include <QSpinBox>
#include <QTableView>
#include <QTest>

class ProfilesViewTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void showsWhatWasCountedUnderEach();
    void offersWhatCanBeDone_data();
    void offersWhatCanBeDone();
    void keepsTheProfileChosen();
    void refusesANameAndSaysWhy();
    void deletesOnlyOnceConfirmed_data();
    void deletesOnlyOnceConfirmed();
    void showsALongDeletion();
    void savesAMilestone();

private:
    QTableView* table(const char* card) const;
    QAction* action(const char* name) const;

    std::unique_ptr<UiDatabase> m_database;
    std::unique_ptr<QueryWorker> m_worker;
    std::unique_ptr<ProfilesView> m_view;
};

void ProfilesViewTest::init()
{
    m_database = std::make_unique<UiDatabase>();
    m_database->addHour(QDate::currentDate(), 0, 41, 7);
    m_database->addHour(QDate::currentDate().addDays(-400), 0, 1, 7);
    m_worker = std::make_unique<QueryWorker>(m_database->file());
    ViewContext context;
    context.worker = m_worker.get();
    m_view = std::make_unique<ProfilesView>(context);
    m_view->setNameProblem([](int id, const QString& name) {
        return name == u"Work" && id != 7 ? QStringLiteral("There is a Work already.") : QString();
    });
    m_view->setProfiles({{.id = 0, .name = QStringLiteral("General"), .isActive = true},
                         {.id = 7, .name = QStringLiteral("Work")}});
    m_view->setMilestones({{.id = 5,
                            .name = QStringLiteral("Many"),
                            .type = QStringLiteral("Keys"),
                            .amount = 1000,
                            .base = 500,
                            .total = 750}},
                          {});
    m_view->setScope({.last = QDate::currentDate()});
    m_view->show();
}

void ProfilesViewTest::cleanup()
{
    m_view.reset();
    m_worker.reset();
    m_database.reset();
}

QTableView* ProfilesViewTest::table(const char* card) const
{
    return m_view->findChild<QWidget*>(QLatin1String(card))->findChild<QTableView*>();
}

QAction* ProfilesViewTest::action(const char* name) const
{
    return m_view->findChild<QAction*>(QLatin1String(name));
}

void ProfilesViewTest::showsWhatWasCountedUnderEach()
{
    const auto keys = [this](int row) {
        return table("profiles")->model()->index(row, 2).data().toString();
    };
    QTRY_COMPARE(keys(1), QStringLiteral("42"));
    QCOMPARE(keys(0), QStringLiteral("0"));
    QCOMPARE(table("milestones")->model()->index(0, 1).data().toString(),
             QStringLiteral("1,000 keys"));
}

void ProfilesViewTest::offersWhatCanBeDone_data()
{
    QTest::addColumn<int>("row");
    QTest::addColumn<bool>("isOwn");
    QTest::addColumn<bool>("canActivate");
    QTest::newRow("General, active") << 0 << false << false;
    QTest::newRow("Work") << 1 << true << true;
}

void ProfilesViewTest::offersWhatCanBeDone()
{
    QFETCH(int, row);
    table("profiles")->selectRow(row);
    QTEST(action("renameProfile")->isEnabled(), "isOwn");
    QTEST(action("deleteProfile")->isEnabled(), "isOwn");
    QTEST(action("activateProfile")->isEnabled(), "canActivate");
}

/// Or none, where it is gone: what takes its place was not what the user chose to delete.
void ProfilesViewTest::keepsTheProfileChosen()
{
    const ProfileEntry general{.id = 0, .name = QStringLiteral("General"), .isActive = true};
    const ProfileEntry games{.id = 9, .name = QStringLiteral("Games")};
    const ProfileEntry work{.id = 7, .name = QStringLiteral("Work")};
    table("profiles")->selectRow(1);
    m_view->setProfiles({general, games, work});
    const QModelIndexList chosen = table("profiles")->selectionModel()->selectedRows();
    QCOMPARE(chosen.size(), 1);
    QCOMPARE(chosen.constFirst().data().toString(), work.name);
    m_view->setProfiles({general, games});
    QVERIFY(!table("profiles")->selectionModel()->hasSelection());
    QVERIFY(!action("deleteProfile")->isEnabled());
}

void ProfilesViewTest::refusesANameAndSaysWhy()
{
    const QSignalSpy added(m_view.get(), &ProfilesView::profileAdded);
    action("addProfile")->trigger();
    auto* dialog = m_view->findChild<NameDialog*>();
    auto* name = dialog->findChild<QLineEdit*>(QStringLiteral("name"));
    auto* take = dialog->findChild<QPushButton*>(QStringLiteral("take"));
    name->setText(QStringLiteral("Work"));
    QVERIFY(!take->isEnabled());
    QCOMPARE(dialog->findChild<QLabel*>(QStringLiteral("reason"))->text(),
             QStringLiteral("There is a Work already."));
    name->setText(QStringLiteral("  Spiele "));
    QVERIFY(take->isEnabled());
    take->click();
    QCOMPARE(added.size(), 1);
    QCOMPARE(added.constFirst().constFirst().toString(), QStringLiteral("Spiele"));
}

void ProfilesViewTest::deletesOnlyOnceConfirmed_data()
{
    QTest::addColumn<bool>("confirm");
    QTest::newRow("confirmed") << true;
    QTest::newRow("escaped") << false;
}

void ProfilesViewTest::deletesOnlyOnceConfirmed()
{
    QFETCH(bool, confirm);
    const QSignalSpy deleted(m_view.get(), &ProfilesView::profileDeleted);
    table("profiles")->selectRow(1);
    action("deleteProfile")->trigger();
    auto* box = m_view->findChild<QMessageBox*>();
    QVERIFY(box->text().contains(QStringLiteral("“Work”")));
    if (confirm) {
        box->findChild<QPushButton*>(QStringLiteral("confirm"))->click();
    } else {
        QTest::keyClick(box, Qt::Key_Escape);
    }
    QCOMPARE(deleted.size(), confirm ? 1 : 0);
}

void ProfilesViewTest::showsALongDeletion()
{
    const QSignalSpy cancelled(m_view.get(), &ProfilesView::deletionCancelled);
    table("profiles")->selectRow(1);
    action("deleteProfile")->trigger();
    m_view->findChild<QPushButton*>(QStringLiteral("confirm"))->click();
    QPointer<DeletionDialog> dialog = m_view->findChild<DeletionDialog*>();
    QVERIFY(!dialog->isVisible()); // Most are over before one could read it.
    m_view->setDeletionProgress(40);
    QTRY_VERIFY(dialog->isVisible());
    QCOMPARE(dialog->findChild<QLabel*>(QStringLiteral("text"))->text(),
             QStringLiteral("Deleting the profile “Work”…"));
    QCOMPARE(dialog->findChild<QProgressBar*>(QStringLiteral("progress"))->value(), 40);
    QTest::keyClick(dialog, Qt::Key_Escape);
    QTest::keyClick(dialog, Qt::Key_Escape);
    QCOMPARE(cancelled.size(), 1);
    QVERIFY(dialog->isVisible()); // Until what was done is undone.
    m_view->endDeletion();
    QTRY_VERIFY(!dialog);
}

void ProfilesViewTest::savesAMilestone()
{
    QList<MilestoneEntry> saved;
    connect(m_view.get(), &ProfilesView::milestoneSaved, this,
            [&saved](const MilestoneEntry& milestone) { saved.append(milestone); });
    table("milestones")->selectRow(0);
    action("editMilestone")->trigger();
    auto* dialog = m_view->findChild<MilestoneDialog*>();
    dialog->findChild<QSpinBox*>(QStringLiteral("amount"))->setValue(2000);
    dialog->findChild<QPushButton*>(QStringLiteral("take"))->click();
    table("milestones")->selectRow(0);
    action("switchMilestone")->trigger();
    QCOMPARE(saved.size(), 2);
    QCOMPARE(saved.at(0).id, 5);
    QCOMPARE(saved.at(0).amount, 2000);
    QCOMPARE(saved.at(1).isActive, false);
}

REGISTER_TEST(ProfilesViewTest);
#include "ProfilesViewTest.moc"
