// SPDX-License-Identifier: GPL-3.0-or-later
#include "UiDatabase.h"
#include "base/Format.h"
#include "storage/Settings.h"
#include "support/TestRegistry.h"
#include "ui/MainWindow.h"
#include "ui/MessageBoxes.h"
#include "ui/RangeControl.h"
#include "ui/SideBar.h"
#include "ui/Theme.h"
#include "ui/View.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QStackedWidget>
#include <QTableView>
#include <QTest>
#include <QTimer>

class MainWindowTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void leadsThroughTheViews();
    void followsTheDaysAndTheWayBack();
    void followsTheDatabase();
    void saysWhatIsMissing_data();
    void saysWhatIsMissing();
    void doesWhatItsButtonsSay();
    void showsAndFiltersATable();
    void closesByKeyAndKeepsItsPlace();
    void opensTheSettingsOnce();
    void tabReachesNamedControlsInReadingOrder();
    void asksBeforeItStartsAfresh_data();
    void asksBeforeItStartsAfresh();
    void textStandsOut_data();
    void textStandsOut();

private:
    void open();
    template <typename Widget>
    Widget* find(const char* name) const;
    QString figure() const;
    QWidget* page() const;

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
    ViewContext context;
    context.applicationName = [](const QString& path) {
        return path.endsWith(QStringLiteral("kate")) ? QStringLiteral("Kate") : QString();
    };
    m_window = std::make_unique<MainWindow>(m_database->file(), context);
    m_window->show();
    m_window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
    QTRY_VERIFY(find<QWidget>("cards")->isVisible() || find<QWidget>("notice")->isVisible());
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

QWidget* MainWindowTest::page() const
{
    return m_window->findChild<QStackedWidget*>(QStringLiteral("views"))->currentWidget();
}

void MainWindowTest::leadsThroughTheViews()
{
    m_database->addBusyDay(m_today);
    open();
    const QStringList titles{QStringLiteral("Overview"), QStringLiteral("Keyboard"),
                             QStringLiteral("Mouse"),    QStringLiteral("Applications"),
                             QStringLiteral("Network"),  QStringLiteral("Uptime"),
                             QStringLiteral("Profiles"), QStringLiteral("Account")};
    const QSignalSpy made(m_window.get(), &MainWindow::viewMade);
    for (int view = static_cast<int>(titles.size()) - 1; view >= 0; --view) {
        QTest::keyClick(m_window.get(), static_cast<Qt::Key>(Qt::Key_1 + view),
                        Qt::ControlModifier);
        QCOMPARE(find<QLabel>("viewTitle")->text(), titles.at(view));
        QCOMPARE(page()->isVisible(), true);
    }
    QCOMPARE(made.size(), titles.size() - 1); // Each when it is first shown.
    QVERIFY(find<RangeControl>("rangeControl")->isVisible());
    QTest::keyClick(m_window.get(), Qt::Key_8, Qt::ControlModifier);
    QVERIFY(!find<RangeControl>("rangeControl")->isVisible()); // An account has no days.
}

void MainWindowTest::followsTheDaysAndTheWayBack()
{
    m_database->addHour(m_today.addDays(-1), 9, 77);
    open();
    QVERIFY(find<QWidget>("notice")->isVisible());
    find<RangeControl>("rangeControl")->select(DateRange::Preset::Yesterday);
    QTRY_COMPARE(figure(), QStringLiteral("77"));
    QTest::keyClick(m_window.get(), Qt::Key_2, Qt::ControlModifier);
    const auto* keyboard = static_cast<View*>(page());
    QTest::keyClick(m_window.get(), Qt::Key_Left, Qt::AltModifier);
    QVERIFY(find<QLabel>("viewSubtitle")->toolTip().contains(Format::day(m_today)));
    QCOMPARE(find<RangeControl>("rangeControl")->range(), DateRange(DateRange::Preset::Today));
    QVERIFY(keyboard->isVisible());
}

void MainWindowTest::followsTheDatabase()
{
    open();
    QVERIFY(find<QWidget>("notice")->isVisible());
    m_database->addHour(m_today, 9, 41);
    QTRY_VERIFY(find<QWidget>("figures")->isVisible());
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
    QTest::addColumn<QStringList>("shown");
    const auto row = [](const char* name, InputState state, bool hasFigures, const char* shown) {
        QTest::newRow(name) << state << hasFigures
                            << QString::fromLatin1(shown).split(u' ', Qt::SkipEmptyParts);
    };
    row("counting", InputState::Reading, true, "figures counting");
    row("empty", InputState::Reading, false, "notice counting");
    row("no devices", InputState::NoDevices, false, "notice command");
    row("no permission", InputState::NoPermission, true, "figures notice command");
    row("off", InputState::Off, false, "notice noticeButton");
    row("read-only", InputState::ReadOnly, true, "figures notice");
    row("paused", InputState::Paused, true, "figures notice counting");
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
    QStringList shown;
    for (const char* name : {"figures", "notice", "command", "noticeButton", "counting"}) {
        if (find<QWidget>(name)->isVisible()) {
            shown += QLatin1String(name);
        }
    }
    QTEST(shown, "shown");
}

void MainWindowTest::doesWhatItsButtonsSay()
{
    open();
    const QSignalSpy paused(m_window.get(), &MainWindow::pauseRequested);
    const QSignalSpy resumed(m_window.get(), &MainWindow::resumeRequested);
    const QSignalSpy wanted(m_window.get(), &MainWindow::keyboardCountingRequested);
    const auto press = [this](InputState state, const char* button) {
        m_window->setInputState(state);
        QTest::mouseClick(find<QPushButton>(button), Qt::LeftButton);
    };
    press(InputState::Reading, "counting");
    press(InputState::Paused, "counting");
    press(InputState::Off, "noticeButton");
    press(InputState::NoPermission, "copyCommand");
    QCOMPARE(paused.size(), 1);
    QCOMPARE(resumed.size(), 1);
    QCOMPARE(wanted.size(), 1);
    QCOMPARE(QApplication::clipboard()->text(), QStringLiteral("sudo usermod -aG input $USER"));
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

    QTest::keyClick(table, Qt::Key_E, Qt::ControlModifier);
    auto* dialog = card->findChild<QFileDialog*>();
    QVERIFY(dialog != nullptr && dialog->isVisible());
    QTest::keyClick(dialog, Qt::Key_Escape);
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
    m_window->resize(1010, 660);
    m_window.reset(); // As where the program ends with its window open.
    open();
    QCOMPARE(m_window->size(), QSize(1010, 660));
}

/// They go with the window, and do not hold it.
void MainWindowTest::opensTheSettingsOnce()
{
    open();
    const QSignalSpy opened(m_window.get(), &MainWindow::settingsOpened);
    QTest::keyClick(m_window.get(), Qt::Key_Comma, Qt::ControlModifier);
    QPointer<QWidget> settings = find<QWidget>("settings");
    QVERIFY(settings->isVisible() && !settings->isModal());
    find<QAbstractButton>("openSettings")->click();
    QCOMPARE(opened.size(), 1);
    QTRY_COMPARE(QApplication::activeWindow(), settings);
    QTest::keyClick(settings, Qt::Key_Escape);
    QTRY_VERIFY(!settings);
    QVERIFY(m_window->isVisible());

    find<QAbstractButton>("openSettings")->click();
    settings = find<QWidget>("settings");
    m_window->close();
    QTRY_VERIFY(!settings);
    m_window->show();
    m_window->showSettings();
    settings = find<QWidget>("settings");
    m_window.reset(); // As where the program ends with its windows open.
    QVERIFY(!settings);
}

void MainWindowTest::tabReachesNamedControlsInReadingOrder()
{
    m_database->addBusyDay(m_today);
    open();
    find<QWidget>("figures")->findChild<QAction*>(QStringLiteral("showTable"))->trigger();
    find<QWidget>("viewOverview")->setFocus();
    QStringList reached;
    for (auto* control = find<QWidget>("viewOverview");
         !reached.contains(control->objectName()) || control->objectName() == u"menu";
         control = QApplication::focusWidget()) {
        const auto* button = qobject_cast<QAbstractButton*>(control);
        const bool named = !control->accessibleName().isEmpty() ||
                           (button != nullptr && !button->text().isEmpty());
        QVERIFY2(named, qPrintable(control->objectName()));
        reached += control->objectName();
        QVERIFY(reached.size() < 30);
        QTest::keyClick(control, Qt::Key_Tab);
    }
    QCOMPARE(reached.join(u' '),
             QStringLiteral(
                 "viewOverview openSettings collapse range counting menu filter table measure "
                 "menu menu calendarMonth menu menu menu"));
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
