// SPDX-License-Identifier: GPL-3.0-or-later
#include "UiDatabase.h"
#include "storage/Settings.h"
#include "support/TestRegistry.h"
#include "ui/MainWindow.h"
#include "ui/MessageBoxes.h"
#include "ui/SideBar.h"
#include "ui/Theme.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QSignalSpy>
#include <QTableView>
#include <QTest>
#include <QTimer>

class MainWindowTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void showsTodaysFigures();
    void followsTheDatabase();
    void saysWhatIsMissing_data();
    void saysWhatIsMissing();
    void copiesTheCommand();
    void pausesAndResumes();
    void showsAndFiltersATable();
    void closesByKeyAndKeepsItsPlace();
    void everyControlHasAName();
    void asksBeforeItStartsAfresh_data();
    void asksBeforeItStartsAfresh();
    void textStandsOut_data();
    void textStandsOut();

private:
    void open();
    template <typename Widget>
    Widget* find(const char* name) const;
    QString figure() const;

    const QDate m_today = QDate::currentDate();
    std::unique_ptr<UiDatabase> m_database;
    std::unique_ptr<MainWindow> m_window;
};

void MainWindowTest::init()
{
    m_database = std::make_unique<UiDatabase>();
}

void MainWindowTest::cleanup()
{
    m_window.reset();
    m_database.reset();
}

void MainWindowTest::open()
{
    m_window = std::make_unique<MainWindow>(m_database->file(), [](const QString& path) {
        return path.endsWith(QStringLiteral("kate")) ? QStringLiteral("Kate") : QString();
    });
    m_window->show();
    m_window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
    QTRY_VERIFY(find<QWidget>("keysToday")->isVisible() || find<QWidget>("notice")->isVisible());
}

template <typename Widget>
Widget* MainWindowTest::find(const char* name) const
{
    return m_window->findChild<Widget*>(QLatin1String(name));
}

QString MainWindowTest::figure() const
{
    return find<QLabel>("figure")->text();
}

void MainWindowTest::showsTodaysFigures()
{
    m_database->addHour(m_today, 9, 12403);
    m_database->addApplication(m_today, 9, QStringLiteral("/usr/bin/kate"), 5000);
    m_database->addApplication(m_today, 9, QStringLiteral("/opt/tool"), 10);
    open();
    QCOMPARE(figure(), QStringLiteral("12.4K"));
    QVERIFY(find<QLabel>("figure")->toolTip().startsWith(QStringLiteral("12,403 keys")));
    QVERIFY(!find<QWidget>("notice")->isVisible());
    QCOMPARE(find<QLabel>("viewTitle")->text(), QStringLiteral("Today"));
    find<QWidget>("mostUsedApplications")->findChild<QAction*>(QStringLiteral("copy"))->trigger();
    QCOMPARE(QApplication::clipboard()->text(),
             QStringLiteral("Application\tKeys\tShare (%)\nKate\t5,000\t99.8\ntool\t10\t0.2\n"));
}

void MainWindowTest::followsTheDatabase()
{
    open();
    QVERIFY(find<QWidget>("notice")->isVisible());
    m_database->addHour(m_today, 9, 41);
    QTRY_VERIFY(find<QWidget>("keysToday")->isVisible());
    QCOMPARE(figure(), QStringLiteral("41"));
    m_database->addHour(m_today, 9, 42);
    QTRY_COMPARE(figure(), QStringLiteral("42"));
    m_window->hide();
    m_database->addHour(m_today, 9, 43);
    QTest::qWait(1200);
    QCOMPARE(figure(), QStringLiteral("42"));
    m_window->show();
    QTRY_COMPARE(figure(), QStringLiteral("43"));
}

void MainWindowTest::saysWhatIsMissing_data()
{
    QTest::addColumn<InputState>("state");
    QTest::addColumn<bool>("hasFigures");
    QTest::addColumn<bool>("notice");
    QTest::addColumn<bool>("command");
    QTest::addColumn<bool>("button");
    QTest::addColumn<bool>("canPause");
    QTest::newRow("counting") << InputState::Reading << true << false << false << false << true;
    QTest::newRow("empty") << InputState::Reading << false << true << false << false << true;
    QTest::newRow("no devices") << InputState::NoDevices << false << true << true << false << false;
    QTest::newRow("no permission")
        << InputState::NoPermission << true << true << true << false << false;
    QTest::newRow("off") << InputState::Off << false << true << false << true << false;
    QTest::newRow("read-only") << InputState::ReadOnly << true << true << false << false << false;
    QTest::newRow("paused") << InputState::Paused << true << true << false << false << true;
}

void MainWindowTest::saysWhatIsMissing()
{
    QFETCH(InputState, state);
    QFETCH(bool, hasFigures);
    if (hasFigures) {
        m_database->addHour(m_today, 9, 5);
    }
    open();
    m_window->setInputState(state);
    QTEST(find<QWidget>("notice")->isVisible(), "notice");
    QTEST(find<QLineEdit>("command")->isVisible(), "command");
    QTEST(find<QPushButton>("noticeButton")->isVisible(), "button");
    QTEST(find<QPushButton>("counting")->isVisible(), "canPause");
    QCOMPARE(find<QWidget>("keysToday")->isVisible(), hasFigures);
}

void MainWindowTest::copiesTheCommand()
{
    open();
    m_window->setInputState(InputState::NoPermission);
    QTest::mouseClick(find<QPushButton>("copyCommand"), Qt::LeftButton);
    QCOMPARE(QApplication::clipboard()->text(), QStringLiteral("sudo usermod -aG input $USER"));
}

void MainWindowTest::pausesAndResumes()
{
    open();
    const QSignalSpy paused(m_window.get(), &MainWindow::pauseRequested);
    const QSignalSpy resumed(m_window.get(), &MainWindow::resumeRequested);
    const QSignalSpy wanted(m_window.get(), &MainWindow::keyboardCountingRequested);
    QTest::mouseClick(find<QPushButton>("counting"), Qt::LeftButton);
    m_window->setInputState(InputState::Paused);
    QTest::mouseClick(find<QPushButton>("counting"), Qt::LeftButton);
    m_window->setInputState(InputState::Off);
    QTest::mouseClick(find<QPushButton>("noticeButton"), Qt::LeftButton);
    QCOMPARE(paused.size(), 1);
    QCOMPARE(resumed.size(), 1);
    QCOMPARE(wanted.size(), 1);
}

void MainWindowTest::showsAndFiltersATable()
{
    m_database->addBusyDay(m_today);
    open();
    auto* card = find<QWidget>("mostUsedKeys");
    card->findChild<QAction*>(QStringLiteral("showTable"))->trigger();
    auto* table = card->findChild<QTableView*>(QStringLiteral("table"));
    QVERIFY(table->isVisible());
    QCOMPARE(table->model()->index(0, 0).data().toString(), QStringLiteral("E"));
    const int all = table->model()->rowCount();
    QTest::keyClick(m_window.get(), Qt::Key_F, Qt::ControlModifier);
    auto* filter = card->findChild<QLineEdit*>(QStringLiteral("filter"));
    QVERIFY(filter->hasFocus());
    QTest::keyClicks(filter, QStringLiteral("space"));
    QCOMPARE(table->model()->rowCount(), 2);
    QVERIFY(all > 20);
    table->setFocus();
    table->selectRow(0);
    QTest::keyClick(table, Qt::Key_C, Qt::ControlModifier);
    QVERIFY(QApplication::clipboard()->text().contains(QStringLiteral("pace\t")));
    QTest::keyClick(table, Qt::Key_X);
    QCOMPARE(filter->text(), QStringLiteral("spacex"));
}

void MainWindowTest::closesByKeyAndKeepsItsPlace()
{
    open();
    QCOMPARE(m_window->size(), QSize(1100, 720));
    QCOMPARE(m_window->minimumSize(), QSize(900, 600));
    m_window->resize(1000, 650);
    find<SideBar>("sideBar")->setForm(SideBar::Form::Collapsed);
    const QSignalSpy closed(m_window.get(), &MainWindow::closed);
    QTest::keyClick(m_window.get(), Qt::Key_1, Qt::ControlModifier);
    QTest::keyClick(m_window.get(), Qt::Key_Escape);
    QVERIFY(!m_window->isVisible());
    QCOMPARE(closed.size(), 1);

    // What is stored must survive the way through the database.
    Settings::instance().init(Database::instance());
    open();
    QCOMPARE(m_window->size(), QSize(1000, 650));
    QCOMPARE(find<SideBar>("sideBar")->form(), SideBar::Form::Collapsed);
}

void MainWindowTest::everyControlHasAName()
{
    m_database->addBusyDay(m_today);
    open();
    QSet<QWidget*> reached;
    QWidget* control = m_window->nextInFocusChain();
    for (; control != m_window.get(); control = control->nextInFocusChain()) {
        if (control->isVisible() && (control->focusPolicy() & Qt::TabFocus)) {
            reached.insert(control);
            const auto* button = qobject_cast<QAbstractButton*>(control);
            const bool named = !control->accessibleName().isEmpty() ||
                               (button != nullptr && !button->text().isEmpty());
            QVERIFY2(named, qPrintable(control->objectName() +
                                       QLatin1String(control->metaObject()->className())));
        }
    }
    QVERIFY(reached.contains(find<QWidget>("viewToday")));
    QVERIFY(reached.contains(find<QWidget>("counting")));
    QVERIFY(reached.contains(
        find<QWidget>("mostUsedApplications")->findChild<QWidget*>(QStringLiteral("menu"))));
}

void MainWindowTest::asksBeforeItStartsAfresh_data()
{
    QTest::addColumn<QString>("button");
    QTest::addColumn<bool>("answer");
    QTest::newRow("yes") << QStringLiteral("create") << true;
    QTest::newRow("no") << QStringLiteral("leave") << false;
    QTest::newRow("escape") << QString() << false;
}

void MainWindowTest::asksBeforeItStartsAfresh()
{
    QFETCH(QString, button);
    QTimer::singleShot(0, this, [button] {
        QWidget* box = QApplication::activeModalWidget();
        if (button.isEmpty()) {
            QTest::keyClick(box, Qt::Key_Escape);
        } else {
            box->findChild<QPushButton*>(button)->click();
        }
    });
    QTEST(MessageBoxes().confirmFreshDatabase(QStringLiteral("Continue?")), "answer");
}

void MainWindowTest::textStandsOut_data()
{
    QTest::addColumn<QPalette>("palette");
    QTest::newRow("light") << Theme::lightPalette();
    QTest::newRow("dark") << Theme::darkPalette();
    QPalette faint = Theme::lightPalette();
    faint.setColor(QPalette::Highlight, QColor(0xe0, 0xe8, 0xf0));
    QTest::newRow("faint accent") << faint;
}

void MainWindowTest::textStandsOut()
{
    QFETCH(QPalette, palette);
    const Theme::Colours colours = Theme::colours(palette);
    for (const QColor& ground : {colours.card, colours.page}) {
        QVERIFY(Theme::contrast(colours.text, ground) >= 4.5);
        QVERIFY(Theme::contrast(colours.mutedText, ground) >= 4.5);
    }
    QVERIFY(Theme::contrast(colours.accent, colours.card) >= 3.0);
}

REGISTER_TEST(MainWindowTest);
#include "MainWindowTest.moc"
