// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/TestRegistry.h"
#include "ui/TableText.h"
#include "ui/applications/ApplicationLooks.h"
#include "ui/applications/ApplicationSeries.h"
#include "ui/applications/ApplicationsModel.h"
#include "ui/applications/ApplicationsTable.h"

#include <QAbstractItemModelTester>
#include <QApplication>
#include <QClipboard>
#include <QLineEdit>
#include <QMenu>
#include <QScrollBar>
#include <QTableView>
#include <QTest>

using Applications = QList<ApplicationTotals>;
using Choice = ApplicationSeries::Choice;
using Measure = ApplicationMeasure;

/// The table of applications with its model, and the paths whose icon was asked for.
struct ShownTable
{
    ShownTable();

    QTableView& view() const { return *table.findChild<QTableView*>(); }

    QStringList names() const;

    void sortBy(int column, Qt::SortOrder order) const { view().sortByColumn(column, order); }

    QStringList fetched;
    ApplicationLooks looks;
    ApplicationsModel model;
    ApplicationsTable table;
};

ShownTable::ShownTable()
    : looks({.worker = nullptr,
             .applicationName = [](const QString& path) { return path.mid(5); },
             .applicationIcon =
                 [this](const QString& path) {
                     fetched.append(path);
                     return QIcon();
                 }})
    , model(looks)
    , table(model, QStringLiteral("Applications"))
{
    table.resize(900, 400);
}

QStringList ShownTable::names() const
{
    QStringList names;
    for (int row = 0; row < view().model()->rowCount(); ++row) {
        names.append(view().model()->index(row, 0).data().toString());
    }
    return names;
}

namespace {

ApplicationTotals at(const char* path, const char* name)
{
    ApplicationTotals totals;
    totals.path = QString::fromLatin1(path);
    totals.name = QString::fromLatin1(name);
    return totals;
}

ApplicationTotals application(const QString& name, qint64 keys, qint64 frontSeconds)
{
    ApplicationTotals totals;
    totals.path = QStringLiteral("/bin/") + name;
    totals.name = name;
    totals.keys = keys;
    totals.frontSeconds = frontSeconds;
    return totals;
}

Applications numbered(int count)
{
    Applications all;
    for (int i = 0; i < count; ++i) {
        all.append(application(QStringLiteral("a%1").arg(i, 5, 10, QLatin1Char('0')), i, i));
    }
    return all;
}

} // namespace

class ApplicationsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void sortsByRawValues_data();
    void sortsByRawValues();
    void keepsSelectionAndPlaceOverARefresh();
    void filtersByNameAndPath();
    void tellsSameNamesApart();
    void writesNumbersInFull();
    void findsIconsOfVisibleRowsOnly();
    void offersExclusionByKeyboard();
    void choosesWhatIsCharted_data();
    void choosesWhatIsCharted();
    void sumsSeriesPerDay();
};

void ApplicationsTest::sortsByRawValues_data()
{
    QTest::addColumn<int>("column");
    QTest::addColumn<Qt::SortOrder>("order");
    QTest::addColumn<QString>("expected");
    const auto row = [](const char* name, int column, Qt::SortOrder order, const char* expected) {
        QTest::newRow(name) << column << order << QString::fromLatin1(expected);
    };
    row("numbers, not their texts", ApplicationsModel::KeysColumn, Qt::DescendingOrder, "dBca");
    row("ties by name when ascending", ApplicationsModel::KeysColumn, Qt::AscendingOrder, "aBcd");
    row("ties by name when descending", ApplicationsModel::FrontColumn, Qt::DescendingOrder,
        "aBcd");
    row("names whatever their case", ApplicationsModel::NameColumn, Qt::AscendingOrder, "aBcd");
}

void ApplicationsTest::sortsByRawValues()
{
    QFETCH(int, column);
    QFETCH(Qt::SortOrder, order);
    QFETCH(QString, expected);
    ShownTable shown;
    shown.model.setApplications({application(QStringLiteral("c"), 9'000, 60),
                                 application(QStringLiteral("d"), 1'000'000, 60),
                                 application(QStringLiteral("a"), 8, 60),
                                 application(QStringLiteral("B"), 9'000, 60)});
    QVERIFY(shown.model.index(0, ApplicationsModel::FrontColumn)
                .data(Qt::ToolTipRole)
                .toString()
                .contains(QStringLiteral("25.0 %")));
    shown.sortBy(column, order);
    QCOMPARE(shown.names().join(QString()), expected);
}

void ApplicationsTest::keepsSelectionAndPlaceOverARefresh()
{
    ShownTable shown;
    const QAbstractItemModelTester tester(&shown.model,
                                          QAbstractItemModelTester::FailureReportingMode::QtTest);
    shown.model.setApplications(numbered(200));
    shown.table.show();
    QVERIFY(QTest::qWaitForWindowExposed(&shown.table));
    shown.view().selectRow(100);
    const QStringList selected = shown.table.selectedPaths();
    QCOMPARE(selected, {QStringLiteral("/bin/a00099")});
    const QScrollBar& bar = *shown.view().verticalScrollBar();
    shown.view().verticalScrollBar()->setValue(1500);
    QCOMPARE(bar.value(), 1500);

    Applications changed = numbered(210); // Ten more, one gone, another order, another leader.
    changed.removeAt(50);
    std::reverse(changed.begin(), changed.end());
    changed[100].frontSeconds = 1'000'000;
    shown.model.setApplications(changed);

    QCOMPARE(shown.table.selectedPaths(), selected);
    QCOMPARE(bar.value(), 1500);
    QCOMPARE(shown.names().constFirst(), changed.at(100).name);
    QCOMPARE(shown.view().model()->rowCount(), 209);
    for (const ApplicationTotals& totals : changed) {
        QCOMPARE(shown.model.application(shown.model.rowOf(totals.path)), totals);
    }
}

void ApplicationsTest::filtersByNameAndPath()
{
    ShownTable shown;
    shown.model.setApplications({application(QStringLiteral("Editor"), 1, 2),
                                 application(QStringLiteral("mail"), 1, 1),
                                 at("/opt/edit/x", "X")});
    shown.table.show();
    shown.view().setFocus();
    QTest::keyClicks(&shown.view(), QStringLiteral("eDit"));
    QCOMPARE(shown.table.findChild<QLineEdit*>()->text(), QStringLiteral("eDit"));
    QCOMPARE(shown.names(), QStringList({QStringLiteral("Editor"), QStringLiteral("X")}));
}

void ApplicationsTest::tellsSameNamesApart()
{
    ShownTable shown;
    Applications all{at("/usr/bin/code", "Code"), at("/opt/code", "Code"), at("/usr/bin/vi", "Vi")};
    shown.model.setApplications(all);
    const auto note = [&shown](int row) {
        return shown.model.index(row, 0).data(ApplicationsModel::NoteRole).toString();
    };
    QCOMPARE(note(0), QStringLiteral("/usr/bin/code"));
    QCOMPARE(note(1), QStringLiteral("/opt/code"));
    QCOMPARE(note(2), QString());
    shown.model.setExcluded({QStringLiteral("/opt/code"), QStringLiteral("/usr/bin/vi")});
    QCOMPARE(note(1), QStringLiteral("Excluded · /opt/code"));
    QCOMPARE(note(2), QStringLiteral("Excluded"));
    all.removeAt(1);
    shown.model.setApplications(all);
    QCOMPARE(note(0), QString());
}

void ApplicationsTest::writesNumbersInFull()
{
    ShownTable shown;
    shown.model.setApplications({{.path = QStringLiteral("/usr/bin/vi"),
                                  .name = QStringLiteral("Vi"),
                                  .keys = 1'234'567,
                                  .clicks = 2,
                                  .scrolls = 3,
                                  .inches = 100'000,
                                  .frontSeconds = 7'505,
                                  .runningSeconds = 45'296'000,
                                  .lastUsed = QDateTime({2026, 3, 1}, {14, 5, 9})}});
    QCOMPARE(TableText::csv(shown.model),
             QStringLiteral("Application,Keys,Clicks,Scrolls,Travel (m),Time in front (s),Running "
                            "time since counting began (s),Last used,Path\r\nVi,1234567,2,3,2540,"
                            "7505,45296000,2026-03-01 14:05:09,/usr/bin/vi\r\n"));
    shown.view().selectAll();
    QTest::keyClick(&shown.view(), Qt::Key_C, Qt::ControlModifier);
    QCOMPARE(QApplication::clipboard()->text(),
             QStringLiteral("Vi\t1,234,567\t2\t3\t2,540\t2:05\t12,582:13\t2026-03-01\t"
                            "/usr/bin/vi\n"));
    shown.model.setLengths(Format::Lengths::Imperial);
    QCOMPARE(shown.model.index(0, ApplicationsModel::TravelColumn).data().toString(),
             QStringLiteral("8,333"));
}

void ApplicationsTest::findsIconsOfVisibleRowsOnly()
{
    ShownTable shown;
    Applications all = numbered(10'000);
    for (ApplicationTotals& totals : all) {
        totals.name.clear();
    }
    shown.model.setApplications(all);
    shown.sortBy(ApplicationsModel::KeysColumn, Qt::DescendingOrder);
    shown.table.show();
    QVERIFY(QTest::qWaitForWindowExposed(&shown.table));
    const auto visibleRows = [&shown] {
        return shown.view().viewport()->height() / shown.view().rowHeight(0) + 2;
    };
    QTRY_VERIFY(shown.fetched.contains(QStringLiteral("/bin/a09999")));
    QTest::qWait(50);
    QVERIFY2(shown.fetched.size() <= visibleRows(),
             qPrintable(QString::number(shown.fetched.size())));

    shown.view().scrollToBottom();
    QTRY_VERIFY(shown.fetched.contains(QStringLiteral("/bin/a00000")));
    shown.view().scrollToTop(); // What is known is not asked for again.
    all[9'999].keys += 1;
    shown.model.setApplications(all);
    QTest::qWait(50);
    QVERIFY2(shown.fetched.size() <= qsizetype{2} * visibleRows(),
             qPrintable(QString::number(shown.fetched.size())));
    QCOMPARE(QSet<QString>(shown.fetched.begin(), shown.fetched.end()).size(),
             shown.fetched.size());
}

void ApplicationsTest::offersExclusionByKeyboard()
{
    ShownTable shown;
    shown.model.setApplications(numbered(3));
    shown.model.setExcluded({QStringLiteral("/bin/a00001")});
    shown.table.show();
    QVERIFY(QTest::qWaitForWindowExposed(&shown.table));
    QStringList excluded;
    QStringList included;
    connect(&shown.table, &ApplicationsTable::exclusionWanted, this,
            [&excluded](const QStringList& paths) { excluded += paths; });
    connect(&shown.table, &ApplicationsTable::inclusionWanted, this,
            [&included](const QStringList& paths) { included += paths; });
    shown.view().selectAll();
    for (const QString& name : {QStringLiteral("exclude"), QStringLiteral("include")}) {
        QTest::keyClick(&shown.view(), Qt::Key_F10, Qt::ShiftModifier);
        auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
        QVERIFY(menu != nullptr);
        menu->setActiveAction(menu->findChild<QAction*>(name));
        QTest::keyClick(menu, Qt::Key_Return);
    }
    QCOMPARE(excluded, QStringList({QStringLiteral("/bin/a00002"), QStringLiteral("/bin/a00000")}));
    QCOMPARE(included, {QStringLiteral("/bin/a00001")});
}

void ApplicationsTest::choosesWhatIsCharted_data()
{
    QTest::addColumn<QString>("selected"); // A letter to an application.
    QTest::addColumn<Measure>("measure");
    QTest::addColumn<QString>("before");
    QTest::addColumn<QString>("own");
    QTest::addColumn<QString>("other");
    const auto row = [](const char* name, const char* selected, Measure measure, const char* before,
                        const char* own, const char* other) {
        QTest::newRow(name) << QString::fromLatin1(selected) << measure
                            << QString::fromLatin1(before) << QString::fromLatin1(own)
                            << QString::fromLatin1(other);
    };
    row("top five", "", Measure::Keys, "", "jihgf", "");
    row("top five by another measure", "", Measure::FrontTime, "", "bcdef", "");
    row("fewer than five have any", "", Measure::Clicks, "", "", "");
    row("selected, though without any", "ab", Measure::Clicks, "", "ab", "");
    row("beyond seven colours", "abcdefghij", Measure::Keys, "", "jihgfed", "cba");
    row("those shown keep their places", "bcde", Measure::Keys, "cxd", "cdeb", "");
}

void ApplicationsTest::choosesWhatIsCharted()
{
    QFETCH(QString, selected);
    QFETCH(Measure, measure);
    QFETCH(QString, before);
    Applications all;
    for (int i = 0; i < 10; ++i) {
        all.append(application({}, i, i == 0 ? 0 : 100 - i));
        all.last().path = QChar('a' + i);
    }
    const auto letters = [](const QString& text) {
        QStringList list;
        for (const QChar letter : text) {
            list.append(letter);
        }
        return list;
    };
    const Choice choice = ApplicationSeries::choose(all, letters(selected), measure,
                                                    {.own = letters(before), .other = {}});
    QTEST(choice.own.join(QString()), "own");
    QTEST(choice.other.join(QString()), "other");
}

void ApplicationsTest::sumsSeriesPerDay()
{
    const QDate day(2026, 3, 29);
    const auto counts = [](const QDate& on, const char* path, qint64 keys) {
        return ApplicationDay{.day = on, .path = QString::fromLatin1(path), .keys = keys};
    };
    const QList<ApplicationDay> days{counts(day, "a", 5), counts(day, "b", 1), counts(day, "c", 2),
                                     counts(day.addDays(2), "c", 4)};
    const Choice choice{.own = {QStringLiteral("a")},
                        .other = {QStringLiteral("b"), QStringLiteral("c")}};
    const auto series = ApplicationSeries::series(
        choice, days, {day, day.addDays(2)}, Measure::Keys,
        [](const QString& path) { return path.toUpper(); }, QStringLiteral("Other"));
    QCOMPARE(series.size(), 2);
    QCOMPARE(series.at(0).name, QStringLiteral("A"));
    QCOMPARE(series.at(1).name, QStringLiteral("Other"));
    // Zero where others were counted, nothing where nothing ran.
    QCOMPARE(series.at(0).values, (QMap<QDate, double>{{day, 5}, {day.addDays(2), 0}}));
    QCOMPARE(series.at(1).values, (QMap<QDate, double>{{day, 3}, {day.addDays(2), 4}}));
}

REGISTER_TEST(ApplicationsTest);
#include "ApplicationsTest.moc"
