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

UnzurgedState sample()
{
    return {7,
            {1, 2, 3, 4, 5, 6, 7},
            {{QStringLiteral("/usr/bin/ä"), {.keys = 8}}, {QStringLiteral("/b"), {.scrolls = 9}}}};
}

QCborMap map(const UnzurgedState& state)
{
    return QCborValue::fromCbor(Tvw::encodePayload(state)).toMap();
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
    UnzurgedState full = sample();
    full.generation = CounterLimit;
    for (const UnzurgedCounter& counter : UnzurgedCounters) {
        full.totals.*counter.value = CounterLimit;
    }
    const UnzurgedState withoutCounts{1, {}, {{QStringLiteral("/a"), {}}}};
    for (const UnzurgedState& state : {UnzurgedState(), sample(), full, withoutCounts}) {
        const Tvw::Decoded decoded = Tvw::decode(*Tvw::encode(state, Salt, Machine), Machine);
        QCOMPARE(decoded.fault, Tvw::Fault::None);
        QCOMPARE(decoded.salt, Salt);
        QVERIFY(decoded.state == state);
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
    version[9] = 2;
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
    QTest::newRow("no map") << QCborValue(1).toCbor() << false;
    QTest::newRow("nothing") << QByteArray() << false;
    QTest::newRow("cut") << Tvw::encodePayload(sample()).chopped(1) << false;
}

void TvwFormatTest::checksThePayload()
{
    QFETCH(QByteArray, payload);
    QFETCH(bool, accepted);
    const std::optional<UnzurgedState> state = Tvw::decodePayload(payload);
    QCOMPARE(state.has_value(), accepted);
    QVERIFY(!accepted || *state == sample());
}

REGISTER_TEST(TvwFormatTest);
#include "TvwFormatTest.moc"
