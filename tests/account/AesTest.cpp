// SPDX-License-Identifier: GPL-3.0-or-later
#include "account/Aes.h"
#include "support/TestRegistry.h"

#include <QTest>

class AesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void derivesTheKeyOfThePublishedExample();
    void sealsThePublishedExample();
    void opensOnlyWhatWasSealed();
};

void AesTest::derivesTheKeyOfThePublishedExample()
{
    // RFC 5869, appendix A.1, cut to the length of a key.
    const QByteArray secret(22, '\x0b');
    QCOMPARE(
        Aes::deriveKey(secret, QByteArray::fromHex("000102030405060708090a0b0c"),
                       QByteArray::fromHex("f0f1f2f3f4f5f6f7f8f9")),
        QByteArray::fromHex("3cb25f25faacd57a90434f64d0362f2a2d2d0a90cf1a5a4c5db02d56ecc4c5bf"));
}

void AesTest::sealsThePublishedExample()
{
    // Test case 16 of "The Galois/Counter Mode of Operation (GCM)", McGrew and Viega, 2005.
    const QByteArray key = QByteArray::fromHex("feffe9928665731c6d6a8f9467308308").repeated(2);
    const QByteArray nonce = QByteArray::fromHex("cafebabefacedbaddecaf888");
    const QByteArray header = QByteArray::fromHex("feedfacedeadbeeffeedfacedeadbeefabaddad2");
    const QByteArray plain =
        QByteArray::fromHex("d9313225f88406e5a55909c5aff5269a86a7a9531534f7da2e4c303d8a318a72"
                            "1c3c0c95956809532fcf0e2449a6b525b16aedf5aa0de657ba637b39");
    const QByteArray sealed =
        QByteArray::fromHex("522dc1f099567d07f47f37a32a84427d643a8cdcbfe5c0c97598a2bd2555d1aa"
                            "8cb08e48590dbb3da7b08b1056828838c5f61e6393ba7a0abcc9f662"
                            "76fc6ece0f4e1768cddf8853bb2d551b");
    QCOMPARE(Aes::seal(key, nonce, plain, header), sealed);
    QCOMPARE(Aes::open(key, nonce, sealed, header), plain);
}

void AesTest::opensOnlyWhatWasSealed()
{
    const QByteArray key(Aes::KeySize, 'k');
    const QByteArray nonce(Aes::NonceSize, 'n');
    for (const QByteArray& plain : {QByteArray("counts"), QByteArray()}) {
        for (const QByteArray& header : {QByteArray("header"), QByteArray()}) {
            const QByteArray sealed = Aes::seal(key, nonce, plain, header).value();
            QCOMPARE(Aes::open(key, nonce, sealed, header), plain);
            QVERIFY(!Aes::open(QByteArray(Aes::KeySize, 'K'), nonce, sealed, header));
            QVERIFY(!Aes::open(key, QByteArray(Aes::NonceSize, 'N'), sealed, header));
            QVERIFY(!Aes::open(key, nonce, sealed, header + 'x'));
            QVERIFY(!Aes::open(key, nonce, sealed + 'x', header));
        }
    }
    QVERIFY(!Aes::seal(key.chopped(1), nonce, {}, {}));
    QVERIFY(!Aes::seal(key, nonce.chopped(1), {}, {}));
    QVERIFY(!Aes::open(key, nonce, QByteArray(Aes::TagSize - 1, 't'), {}));
    QVERIFY(!Aes::deriveKey({}, "salt", "purpose"));
}

REGISTER_TEST(AesTest);
#include "AesTest.moc"
