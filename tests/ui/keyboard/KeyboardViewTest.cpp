// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/TestRegistry.h"
#include "ui/Card.h"
#include "ui/CountsModel.h"
#include "ui/HeatGrid.h"
#include "ui/UiDatabase.h"
#include "ui/keyboard/KeyboardDrawing.h"
#include "ui/keyboard/KeyboardView.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QTest>

class KeyboardViewTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void showsEachKeyOnceAndAllKeys();
    void followsTheChosenLayout();
    void combinationsShowOnceThereAreAny();
    void fillsTheWeek();
    void saysWhatWillAppear();

private:
    QWidget* find(const char* name) const
    {
        return m_view->findChild<QWidget*>(QLatin1String(name));
    }

    /// The labels of a card's rows.
    QStringList labels(const QString& labelHeader) const;

    void open();

    const QDate m_day = QDate::currentDate();
    std::unique_ptr<UiDatabase> m_database;
    std::unique_ptr<QueryWorker> m_worker;
    std::unique_ptr<KeyboardView> m_view;
};

void KeyboardViewTest::init()
{
    m_database = std::make_unique<UiDatabase>();
    Settings::instance().setValue(SettingsKeys::KeyboardLayout, QStringLiteral("ansi-qwerty"));
    m_database->addHour(m_day, 9, 700);
    m_database->addKey(m_day, 9, 'Q', 400);
    m_database->addKey(m_day, 9, Qt::Key_Shift, 200);
    m_database->addKey(m_day, 9, Qt::Key_VolumeUp, 70);
    m_database->addKey(m_day, 9, Qt::Key_F13, 30);
}

void KeyboardViewTest::cleanup()
{
    m_view.reset();
    m_worker.reset();
    m_database.reset();
}

void KeyboardViewTest::open()
{
    m_worker = std::make_unique<QueryWorker>(m_database->file());
    m_view = std::make_unique<KeyboardView>(
        ViewContext{.worker = m_worker.get(), .applicationName = {}, .applicationIcon = {}});
    m_view->setScope({.first = m_day, .last = m_day, .profileId = {}});
    m_view->resize(900, 664);
    m_view->show();
    QTRY_VERIFY(find("notice")->isVisible() || find("keyboardMap")->isVisible());
}

QStringList KeyboardViewTest::labels(const QString& labelHeader) const
{
    QStringList labels;
    for (const CountsModel* model : m_view->findChildren<CountsModel*>()) {
        if (model->headerData(0, Qt::Horizontal).toString() == labelHeader) {
            for (const CountsModel::Row& row : model->rows()) {
                labels.append(QStringLiteral("%1 %2").arg(row.label).arg(row.count));
            }
        }
    }
    return labels;
}

void KeyboardViewTest::showsEachKeyOnceAndAllKeys()
{
    open();
    const auto* unplaced = m_view->findChild<QLabel*>(QStringLiteral("unplacedKeys"));
    QVERIFY(unplaced->isVisible());
    QCOMPARE(unplaced->text(), QStringLiteral("Not on the drawing: Volume Up 70 · F13 30"));
    const auto* drawing = m_view->findChild<KeyboardDrawing*>();
    QCOMPARE(drawing->describe(drawing->keyboard().keyAt({2, 2.75})),
             QStringLiteral("Q: 400 keys, 57.1 %"));
    QCOMPARE(labels(QStringLiteral("Key")),
             QStringList({QStringLiteral("Q 400"), QStringLiteral("Shift 200"),
                          QStringLiteral("Volume Up 70"), QStringLiteral("F13 30")}));
    QVERIFY(drawing->height() >= 200);
}

void KeyboardViewTest::followsTheChosenLayout()
{
    open();
    auto* layouts = m_view->findChild<QComboBox*>(QStringLiteral("keyboardLayout"));
    QCOMPARE(layouts->currentData().toString(), QStringLiteral("ansi-qwerty"));
    const QString azerty = QStringLiteral("iso-azerty");
    for (int i = layouts->findData(azerty); i > 0; --i) {
        QTest::keyClick(layouts, Qt::Key_Down);
    }
    QCOMPARE(Settings::instance().value(SettingsKeys::KeyboardLayout), azerty);
    QCOMPARE(labels(QStringLiteral("Key")).first(), QStringLiteral("A 400"));
    const auto* drawing = m_view->findChild<KeyboardDrawing*>();
    QCOMPARE(drawing->describe(drawing->keyboard().keyAt({2, 2.75})),
             QStringLiteral("A: 400 keys, 57.1 %"));
}

void KeyboardViewTest::combinationsShowOnceThereAreAny()
{
    open();
    QVERIFY(!find("combinations")->isVisible());
    const auto add = [this](const QString& combination, int count) {
        QVERIFY(m_database->exec(QStringLiteral("INSERT INTO keycombo_frequency (day, hour, combo, "
                                                "count, profile_id) VALUES ('%1', 9, '%2', %3, 0)")
                                     .arg(m_day.toString(Qt::ISODate), combination)
                                     .arg(count)));
    };
    add(QStringLiteral("control,67"), 5);
    add(QStringLiteral("option,shift,16777217"), 3);
    add(QStringLiteral("strange"), 1);
    QTRY_VERIFY(find("combinations")->isVisible());
    const QString header = QStringLiteral("Combination");
    QCOMPARE(labels(header),
             QStringList({QStringLiteral("Ctrl+C 5"), QStringLiteral("Alt+Shift+Tab 3"),
                          QStringLiteral("strange 1")}));
    auto* hideCtrl = m_view->findChild<QCheckBox*>(QStringLiteral("combinations_hide_ctrl"));
    auto* hideShift = m_view->findChild<QCheckBox*>(QStringLiteral("combinations_hide_shift"));
    QTest::keyClick(hideCtrl, Qt::Key_Space);
    QCOMPARE(labels(header).first(), QStringLiteral("Alt+Shift+Tab 3"));
    QTest::keyClick(hideShift, Qt::Key_Space);
    QCOMPARE(labels(header), QStringList{QStringLiteral("strange 1")});
    QVERIFY(Settings::instance().value(SettingsKeys::CombinationsHideCtrl));
    QVERIFY(Settings::instance().value(SettingsKeys::CombinationsHideShift));
}

void KeyboardViewTest::fillsTheWeek()
{
    m_database->addHour(m_day, 23, 100);
    open();
    const auto* week = m_view->findChild<HeatGrid*>(QStringLiteral("week"));
    const int first = QLocale::system().firstDayOfWeek();
    const int row = (m_day.dayOfWeek() - first + 7) % 7;
    QCOMPARE(week->count(row, 9), 700);
    QCOMPARE(week->count(row, 23), 100);
    QCOMPARE(week->sum(), 800);
}

void KeyboardViewTest::saysWhatWillAppear()
{
    QVERIFY(m_database->exec(QStringLiteral("DELETE FROM keypresses")));
    QVERIFY(m_database->exec(QStringLiteral("DELETE FROM keypress_frequency")));
    open();
    QVERIFY(find("notice")->isVisible());
    QVERIFY(!find("keyboardMap")->isVisible());
    m_database->addHour(m_day, 10, 5);
    QTRY_VERIFY(find("keyboardMap")->isVisible());
    QVERIFY(find("weekHours")->isVisible());
}

REGISTER_TEST(KeyboardViewTest);
#include "KeyboardViewTest.moc"
