// SPDX-License-Identifier: GPL-3.0-or-later
#include "account/TvwFormat.h"
#include "support/TestRegistry.h"

#include <QCborArray>
#include <QCborMap>
#include <QCborValue>
#include <QTest>

namespace {

const QByteArray Machine("0123456789abcdef");
const QByteArray Salt(Tvw::SaltSize, 's');

UnzurgedState sampleCounts()
{
    return {.generation = 7,
            .totals = {1, 2, 3, 4, 5, 6, 7},
            .applications = {{QStringLiteral("/usr/bin/ä"), {.keys = 8}},
                             {QStringLiteral("/b"), {.scrolls = 9}}},
            .lineage = QStringLiteral("a line"),
            .settled = 3};
}

TvwContent sample()
{
    const QDateTime time = QDateTime::fromMSecsSinceEpoch(1'700'000'000'123);
    const AccountIdentity identity{42,
                                   7,
                                   QStringLiteral("a@example.org"),
                                   QStringLiteral("Äda"),
                                   QStringLiteral("desk"),
                                   QStringLiteral("5a1f")};
    const ZurgeInFlight inFlight{QStringLiteral("9d0e77"), time, {.keys = 1}, {}, 41, 6};
    return {sampleCounts(), {identity, QStringLiteral("9d0e77"), time, inFlight}};
}

QCborMap map(const TvwContent& content)
{
    return QCborValue::fromCbor(Tvw::encodePayload(content)).toMap();
}

QCborMap ofVersion1()
{
    QCborMap content = map(sample());
    for (const char* field : {"account", "lineage", "settled"}) {
        content.remove(QLatin1String(field));
    }
    return content;
}

QByteArray bytes(const QCborMap& map)
{
    return map.toCborValue().toCbor();
}

} // namespace

class TvwFormatTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void keepsEveryState();
    void noticesEveryChange();
    void namesTheFault_data();
    void namesTheFault();
    void checksThePayload_data();
    void checksThePayload();
};

void TvwFormatTest::keepsEveryState()
{
    TvwContent full = sample();
    full.counts.generation = CounterLimit;
    full.account.identity.userId = std::numeric_limits<qint64>::max();
    for (const UnzurgedCounter& counter : UnzurgedCounters) {
        full.counts.totals.*counter.value = CounterLimit;
        full.account.inFlight->totals.*counter.value = CounterLimit;
    }
    TvwContent withoutCounts;
    withoutCounts.counts.applications.insert(QStringLiteral("/a"), {});
    withoutCounts.account.inFlight = ZurgeInFlight();
    for (const TvwContent& content : {TvwContent(), sample(), full, withoutCounts}) {
        const Tvw::Decoded decoded = Tvw::decode(*Tvw::encode(content, Salt, Machine), Machine);
        QCOMPARE(decoded.fault, Tvw::Fault::None);
        QCOMPARE(decoded.salt, Salt);
        QVERIFY(decoded.content == content);
    }
}

void TvwFormatTest::noticesEveryChange()
{
    const QByteArray good = *Tvw::encode(sample(), Salt, Machine);
    for (qsizetype i = 0; i < good.size() * 8; ++i) {
        QByteArray changed = good;
        changed[i / 8] = static_cast<char>(changed.at(i / 8) ^ (1 << (i % 8)));
        QVERIFY2(Tvw::decode(changed, Machine).fault != Tvw::Fault::None,
                 qPrintable(QString::number(i)));
    }
    for (qsizetype length = 0; length < good.size(); ++length) {
        const Tvw::Fault fault = Tvw::decode(good.first(length), Machine).fault;
        QCOMPARE(fault, length < 54 ? Tvw::Fault::Truncated : Tvw::Fault::Sealed);
    }
    QCOMPARE(Tvw::decode(good + 'x', Machine).fault, Tvw::Fault::Sealed);
}

void TvwFormatTest::namesTheFault_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QByteArray>("machine");
    QTest::addColumn<Tvw::Fault>("fault");
    const QByteArray good = *Tvw::encode(sample(), Salt, Machine);
    QByteArray version = good;
    version[9] = 3;
    const QByteArray nowhere = *Tvw::encode(sample(), Salt, {});
    QTest::newRow("another machine")
        << good << QByteArray("fedcba9876543210") << Tvw::Fault::Sealed;
    QTest::newRow("a machine without id") << good << QByteArray() << Tvw::Fault::Sealed;
    QTest::newRow("no id on both") << nowhere << QByteArray() << Tvw::Fault::None;
    QTest::newRow("next version") << version << Machine << Tvw::Fault::UnknownVersion;
    QTest::newRow("a picture") << QByteArray("\x89PNG\r\n") << Machine << Tvw::Fault::Foreign;
    QTest::newRow("zeros") << QByteArray(4096, '\0') << Machine << Tvw::Fault::Foreign;
}

void TvwFormatTest::namesTheFault()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QByteArray, machine);
    QTEST(Tvw::decode(bytes, machine).fault, "fault");
}

void TvwFormatTest::checksThePayload_data()
{
    QTest::addColumn<QByteArray>("payload");
    QTest::addColumn<bool>("accepted");
    const QString totals = QStringLiteral("totals");
    const QString applications = QStringLiteral("applications");
    const QString generation = QStringLiteral("generation");
    QCborMap later = map(sample());
    later.insert(QStringLiteral("added later"), QStringLiteral("text"));
    QTest::newRow("a field of a later version") << bytes(later) << true;
    QTest::newRow("of version 1") << bytes(ofVersion1()) << true;

    const auto row = [](const char* name, const QString& field, const QCborValue& value) {
        QCborMap changed = map(sample());
        changed.insert(field, value);
        QTest::newRow(name) << bytes(changed) << false;
    };
    const QCborMap negative{{QStringLiteral("keys"), -1}};
    row("totals missing", totals, QCborValue(QCborValue::Undefined));
    row("negative count", totals, negative);
    row("fraction", totals, QCborMap{{QStringLiteral("keys"), 1.5}});
    row("text for a count", totals, QCborMap{{QStringLiteral("keys"), QStringLiteral("1")}});
    row("negative generation", generation, -1);
    row("applications as list", applications, QCborArray{1, 2});
    row("number for a path", applications, QCborMap{{1, QCborMap()}});
    row("negative count of an application", applications,
        QCborMap{{QStringLiteral("/a"), negative}});
    const QString account = QStringLiteral("account");
    const QString inFlight = QStringLiteral("in_flight");
    row("number for a lineage", QStringLiteral("lineage"), 1);
    row("account as text", account, QStringLiteral("42"));
    row("text for a user", account, QCborMap{{QStringLiteral("user_id"), QStringLiteral("42")}});
    row("number for a token", account, QCborMap{{QStringLiteral("zurge_token"), 9}});
    row("a time beyond all", account,
        QCborMap{{QStringLiteral("last_zurge"), std::numeric_limits<qint64>::max()}});
    row("in flight without amounts", account, QCborMap{{inFlight, QCborMap()}});
    QTest::newRow("no map") << QCborValue(1).toCbor() << false;
    QTest::newRow("nothing") << QByteArray() << false;
    QTest::newRow("cut") << Tvw::encodePayload(sample()).chopped(1) << false;
}

void TvwFormatTest::checksThePayload()
{
    QFETCH(QByteArray, payload);
    QFETCH(bool, accepted);
    const std::optional<TvwContent> content = Tvw::decodePayload(payload);
    QCOMPARE(content.has_value(), accepted);
    if (accepted) {
        QVERIFY(content->counts.totals == sample().counts.totals);
        QVERIFY(content->counts.applications == sample().counts.applications);
    }
}

REGISTER_TEST(TvwFormatTest);
#include "TvwFormatTest.moc"
