// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/TestRegistry.h"
#include "ui/CountsModel.h"
#include "ui/TableText.h"

#include <QAbstractItemModelTester>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

Q_DECLARE_METATYPE(CountsModel::Row)

class CountsModelTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void followsAnyChange_data();
    void followsAnyChange();
    void sharesAddUp();
    void exportsWhatOtherProgramsRead();
};

using Rows = QList<CountsModel::Row>;

void CountsModelTest::followsAnyChange_data()
{
    QTest::addColumn<Rows>("before");
    QTest::addColumn<Rows>("after");
    const CountsModel::Row a{QStringLiteral("A"), {}, 5};
    const CountsModel::Row b{QStringLiteral("B"), QStringLiteral("/b"), 3};
    const CountsModel::Row c{QStringLiteral("C"), {}, 1};
    QTest::newRow("first rows") << Rows{} << Rows{a, b};
    QTest::newRow("more rows") << Rows{a} << Rows{a, b, c};
    QTest::newRow("fewer rows") << Rows{a, b, c} << Rows{b};
    QTest::newRow("other order") << Rows{a, b} << Rows{b, a};
    QTest::newRow("no rows") << Rows{a, b} << Rows{};
}

void CountsModelTest::followsAnyChange()
{
    QFETCH(Rows, before);
    QFETCH(Rows, after);
    CountsModel model(QStringLiteral("Key"), QStringLiteral("Keys"), CountsModel::Shares::Shown);
    const QAbstractItemModelTester tester(&model,
                                          QAbstractItemModelTester::FailureReportingMode::QtTest);
    model.setRows(before);
    model.setRows(after);
    QCOMPARE(model.rowCount(), after.size());
    for (int row = 0; row < model.rowCount(); ++row) {
        const QModelIndex count = model.index(row, CountsModel::CountColumn);
        QCOMPARE(model.index(row, CountsModel::LabelColumn).data(), after.at(row).label);
        QCOMPARE(count.data(CountsModel::SortRole).toLongLong(), after.at(row).count);
    }
}

void CountsModelTest::sharesAddUp()
{
    CountsModel model(QStringLiteral("Key"), QStringLiteral("Keys"), CountsModel::Shares::Shown);
    model.setRows({{QStringLiteral("A"), {}, 3}, {QStringLiteral("B"), {}, 1}});
    QCOMPARE(model.index(0, CountsModel::ShareColumn).data().toString(), QStringLiteral("75.0"));
    model.setRows({{QStringLiteral("A"), {}, 0}});
    QCOMPARE(model.index(0, CountsModel::ShareColumn).data().toString(), QStringLiteral("0.0"));
}

void CountsModelTest::exportsWhatOtherProgramsRead()
{
    CountsModel model(QStringLiteral("Application"), QStringLiteral("Keys"),
                      CountsModel::Shares::None);
    model.setRows(
        {{QStringLiteral("Editor, \"the\" one"), {}, 12403}, {QStringLiteral("ä\tb"), {}, 1}});
    const QTemporaryDir directory;
    const QString path = directory.filePath(QStringLiteral("counts.csv"));
    QCOMPARE(TableText::writeCsv(model, path), QString());
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(QString::fromUtf8(file.readAll()),
             QStringLiteral("Application,Keys\r\n\"Editor, \"\"the\"\" one\",12403\r\nä\tb,1\r\n"));
    QCOMPARE(TableText::tabbed(model),
             QStringLiteral("Application\tKeys\nEditor, \"the\" one\t12,403\nä b\t1\n"));
}

REGISTER_TEST(CountsModelTest);
#include "CountsModelTest.moc"
