// SPDX-License-Identifier: GPL-3.0-or-later
#include "service/ReceivedRequest.h"
#include "support/TestRegistry.h"

#include <QTest>

namespace {

const QByteArray FormType = QByteArrayLiteral("application/x-www-form-urlencoded");
const QByteArray UploadType = QByteArrayLiteral("multipart/form-data; boundary=b+/1");
const QByteArray Envelope =
    QByteArrayLiteral("{\"action\":\"upload_file\",\"client_version\":\"1\","
                      "\"data\":{\"type_upload\":\"unknown\"},\"type_os\":\"linux\"}");
const QByteArray Account =
    QByteArrayLiteral("{\"user_id\":\"42\",\"computer_id\":\"7\",\"password_hash\":\"5a>?1f\"}");
const QByteArray Content = QByteArrayLiteral("a\r\n--b+/\r\n\r\nb\0c\r\n");

QByteArray field(const QByteArray& json)
{
    return json.toBase64().toPercentEncoding();
}

QByteArray form()
{
    return "client_version=1&p=" + field(Envelope) + "&ci=" + field(Account);
}

QByteArray upload()
{
    return "--b+/1\r\nContent-Disposition: form-data; name=\"p\"\r\n\r\n" + Envelope.toBase64() +
           "\r\n--b+/1\r\nContent-Disposition: form-data; name=\"client_version\"\r\n\r\n1"
           "\r\n--b+/1\r\nContent-Disposition: form-data; name=\"file\"; filename=\"x.db\"\r\n"
           "Content-Type: application/octet-stream\r\n\r\n" +
           Content + "\r\n--b+/1--\r\n";
}

} // namespace

/// What a client sends, decoded from its bytes.
class ReceivedRequestTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void noticesDepartures_data();
    void noticesDepartures();
};

void ReceivedRequestTest::noticesDepartures_data()
{
    QTest::addColumn<QByteArray>("type");
    QTest::addColumn<QByteArray>("from");
    QTest::addColumn<QByteArray>("to");
    const auto inForm = [](const char* name, const QByteArray& from, const QByteArray& to) {
        QTest::newRow(name) << FormType << from << to;
    };
    const auto inUpload = [](const char* name, const QByteArray& from, const QByteArray& to) {
        QTest::newRow(name) << UploadType << from << to;
    };
    inForm("another version", "client_version=1", "client_version=2");
    inForm("not base64", "&p=", "&p=*");
    inForm("an account without a number", field(Account),
           field(QByteArray(Account).replace("\"42\"", "42")));
    inForm("an envelope with a further field", field(Envelope),
           field(QByteArray(Envelope).replace("{\"action\"", "{\"x\":1,\"action\"")));
    inForm("an envelope without data", field(Envelope),
           field(QByteArray(Envelope).replace("\"data\"", "\"Data\"")));
    inUpload("another name", "name=\"p\"", "name=\"q\"");
    inUpload("a further header", "name=\"p\"\r\n", "name=\"p\"\r\nContent-Type: text/plain\r\n");
    inUpload("a directory", "x.db", "/tmp/x.db");
    inUpload("another content type", "octet-stream", "zip");
    inUpload("another boundary", "--b+/1\r\nContent-Disposition: form-data; name=\"f",
             "--b+/2\r\nContent-Disposition: form-data; name=\"f");
    inUpload("cut", "--b+/1--\r\n", "");
    inUpload("an epilogue", "--b+/1--\r\n", "--b+/1--\r\nx");
}

void ReceivedRequestTest::noticesDepartures()
{
    QFETCH(QByteArray, type);
    QFETCH(QByteArray, from);
    QFETCH(QByteArray, to);
    QByteArray body = type == FormType ? form() : upload();
    QCOMPARE(body.count(from), 1);
    QCOMPARE(decodeRequest(type, body).violations, QStringList());
    QVERIFY(!decodeRequest(type, body.replace(from, to)).violations.isEmpty());
}

REGISTER_TEST(ReceivedRequestTest);
#include "ReceivedRequestTest.moc"
