// SPDX-License-Identifier: GPL-3.0-or-later
#include "FakeZurgeService.h"
#include "account/ZurgeAnswer.h"
#include "support/TestRegistry.h"

#include <QTest>

#include <limits>

namespace {

QVariantMap answer()
{
    ZurgeLedger ledger;
    return FakeZurgeService(ledger).zurgeAnswer();
}

} // namespace

class ZurgeAnswerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readsAnAnswer();
    void refusesAnother_data();
    void refusesAnother();
    void readsWhatIsThereOfAnAccount();
};

void ZurgeAnswerTest::readsAnAnswer()
{
    QVariantMap data = answer();
    data.insert(QStringLiteral("has_computer_info"), false);
    data.insert(QStringLiteral("of a later service"), 1);
    const std::optional<ZurgeAnswer> read = ZurgeAnswer::from(data);
    QVERIFY(read);
    QCOMPARE(read->token, ZurgeLedger::text(1));
    QVERIFY(!read->hasComputerInfo);
    QVERIFY((read->totals == OnlineTotals{1, 2, 3, 4, 5, 6, 7}));
    QVERIFY((read->ranks == OnlineRanks{1, 2, 3, 4, 5, 6, 7}));
    data.remove(QStringLiteral("has_computer_info"));
    QVERIFY(ZurgeAnswer::from(data)->hasComputerInfo);
}

void ZurgeAnswerTest::refusesAnother_data()
{
    QTest::addColumn<QString>("object"); ///< The object within the answer; empty: the answer.
    QTest::addColumn<QString>("field");
    QTest::addColumn<QVariant>("value"); ///< Invalid: the field is missing.
    const auto row = [](const char* name, const char* object, const char* field,
                        const QVariant& value = {}) {
        QTest::newRow(name) << QString::fromLatin1(object) << QString::fromLatin1(field) << value;
    };
    row("no token", "", "token");
    row("empty token", "", "token", QString());
    row("a number for a token", "", "token", 5);
    row("no totals", "", "new_totals");
    row("a list of totals", "", "new_totals", QVariantList{1, 2});
    row("no ranks", "", "new_ranks");
    row("a word for a flag", "", "has_computer_info", QStringLiteral("false"));
    row("a total missing", "new_totals", "uptime");
    row("negative", "new_totals", "keys", -1);
    row("text of digits", "new_totals", "keys", QStringLiteral("1"));
    row("fraction", "new_totals", "keys", 1.5);
    row("beyond 64 bits", "new_totals", "keys", 1e19);
    row("true", "new_totals", "keys", true);
    row("negative distance", "new_totals", "distance", -0.5);
    row("infinite distance", "new_totals", "distance", std::numeric_limits<double>::infinity());
    row("no distance", "new_totals", "distance");
    row("a rank missing", "new_ranks", "distance");
    row("negative rank", "new_ranks", "scrolls", -1);
}

void ZurgeAnswerTest::refusesAnother()
{
    QFETCH(QString, object);
    QFETCH(QString, field);
    QFETCH(QVariant, value);
    QVariantMap data = answer();
    QVariantMap changed = object.isEmpty() ? data : data.value(object).toMap();
    if (value.isValid()) {
        changed.insert(field, value);
    } else {
        changed.remove(field);
    }
    if (object.isEmpty()) {
        data = changed;
    } else {
        data.insert(object, changed);
    }
    QVERIFY(!ZurgeAnswer::from(data));
}

void ZurgeAnswerTest::readsWhatIsThereOfAnAccount()
{
    ZurgeLedger ledger;
    QVariantMap data = FakeZurgeService(ledger).accountInfo();
    data.insert(QStringLiteral("ranks"), 1);
    const AccountInfo info = AccountInfo::from(data);
    QCOMPARE(info.token, ZurgeLedger::text(1));
    QVERIFY(info.totals && !info.ranks);
    QVERIFY(AccountInfo::from({}).token.isEmpty());
}

REGISTER_TEST(ZurgeAnswerTest);
#include "ZurgeAnswerTest.moc"
