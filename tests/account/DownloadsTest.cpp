// SPDX-License-Identifier: GPL-3.0-or-later
#include "HttpClient.h"
#include "account/BackupDownload.h"
#include "account/DataFileDownload.h"
#include "account/TlsTrust.h"
#include "service/ServiceCertificates.h"
#include "storage/DatabaseBackupUtility.h"
#include "support/FileSizeLimit.h"
#include "support/LogCapture.h"
#include "support/ScriptedServer.h"
#include "support/TestDatabase.h"
#include "support/TestFiles.h"
#include "support/TestRegistry.h"

#include <QSignalSpy>
#include <QTest>

namespace {

using Manner = ScriptedServer::Manner;

constexpr std::chrono::milliseconds StallTimeout = std::chrono::seconds(1);
constexpr int PatienceMs = 60'000;

/// One kept data file, and the server it comes from.
struct DataFileClient
{
    explicit DataFileClient(
        DataFileDownload::DataFile kept = DataFileDownload::DataFile::countryDatabase(),
        Manner manner = Manner::Answer)
        : stall(manner == Manner::StandStill ? StallTimeout : std::chrono::milliseconds(PatienceMs))
        , file(std::move(kept))
    {
        server.script.manner = manner;
        download.setReleaseAddress(server.url(QStringLiteral("/release/")));
    }

    QString path() const { return test.directory() + QLatin1Char('/') + file.fileName; }

    bool hasPart() const { return QFile::exists(path() + QStringLiteral(".part")); }

    qint64 lastCheck() const { return Settings::instance().value(file.lastCheck); }

    /// Waits for the end, and returns whether a new file is in place.
    bool update(DataFileDownload::Trigger trigger = DataFileDownload::Trigger::Now)
    {
        download.update(trigger, DataFileDownload::Asker::User);
        return (!finished.isEmpty() || finished.wait(PatienceMs)) &&
               finished.takeLast().at(1).toBool();
    }

    std::chrono::milliseconds stall;
    TestDatabase test;
    ScriptedServer server;
    DataFileDownload::DataFile file;
    DataFileDownload download{file,
                              test.directory(),
                              [](const QString& path) {
                                  return readFile(path).startsWith("good")
                                             ? QString()
                                             : QStringLiteral("it is bad");
                              },
                              Settings::instance(),
                              nullptr,
                              stall};
    QSignalSpy finished{&download, &DataFileDownload::finished};
};

} // namespace

class DownloadsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // First: any other download would settle whom to trust.
    void trustsWhomRequestsTrust_data();
    void trustsWhomRequestsTrust();
    void replacesADataFile_data();
    void replacesADataFile();
    void keepsTheOldFile_data();
    void keepsTheOldFile();
    void asksForNewerFilesOnly();
    void checksWhenDue_data();
    void checksWhenDue();
    void staysOffTheNetwork_data();
    void staysOffTheNetwork();
    void waitsAfterAFailure();
    void fetchesABackup();
    void tellsWhyNoBackupCame_data();
    void tellsWhyNoBackupCame();
    void canBeCancelled();
};

void DownloadsTest::replacesADataFile_data()
{
    QTest::addColumn<bool>("ports");
    QTest::addColumn<QString>("line");
    QTest::newRow("GeoIP.dat") << false << QStringLiteral("(geoip_download)");
    QTest::newRow("network-ports.csv")
        << true << QStringLiteral("Successfully downlaoded updated network port descriptions.");
}

void DownloadsTest::replacesADataFile()
{
    QFETCH(bool, ports);
    QFETCH(QString, line);
    DataFileClient client(ports ? DataFileDownload::DataFile::portDescriptions()
                                : DataFileDownload::DataFile::countryDatabase());
    QVERIFY(writeFile(client.path(), "old"));
    client.server.script.body = "good" + QByteArray(3'000'000, 'x');
    const qint64 begin = QDateTime::currentSecsSinceEpoch();
    const LogCapture log;
    QVERIFY(client.update());
    QVERIFY(log.contains(line));
    QVERIFY(readFile(client.path()) == client.server.script.body);
    QVERIFY(!client.hasPart());
    const ScriptedServer::Request& request = client.server.requests.first();
    QCOMPARE(request.firstLine(), "GET /release/" + client.file.fileName.toLatin1() + " HTTP/1.1");
    QCOMPARE(request.header("Accept-Encoding"), QByteArray("identity"));
    QVERIFY(begin <= client.lastCheck() &&
            client.lastCheck() <= QDateTime::currentSecsSinceEpoch());
}

void DownloadsTest::keepsTheOldFile_data()
{
    QTest::addColumn<int>("manner");
    QTest::addColumn<int>("status");
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<bool>("counts"); // As a check: the server did answer.
    const auto row = [](const char* name, Manner manner, int status, const QByteArray& body,
                        bool counts) {
        QTest::newRow(name) << static_cast<int>(manner) << status << body << counts;
    };
    const QByteArray good = "good" + QByteArray(100'000, 'x');
    row("not found", Manner::Answer, 404, good, true);
    row("no content", Manner::Answer, 204, {}, true);
    row("unfit", Manner::Answer, 200, "bad", true);
    row("empty", Manner::Answer, 200, {}, true);
    row("too long", Manner::Answer, 200, "good" + QByteArray(33 << 20, 'x'), true);
    row("cut off", Manner::CutAnswer, 200, good, false);
    row("stands still", Manner::StandStill, 200, good, false);
}

void DownloadsTest::keepsTheOldFile()
{
    QFETCH(int, manner);
    QFETCH(int, status);
    QFETCH(QByteArray, body);
    QFETCH(bool, counts);
    DataFileClient client(DataFileDownload::DataFile::portDescriptions(),
                          static_cast<Manner>(manner));
    QVERIFY(writeFile(client.path(), "old"));
    client.server.script = {.manner = static_cast<Manner>(manner), .status = status, .body = body};
    client.download.update(DataFileDownload::Trigger::Now, DataFileDownload::Asker::Client);
    QVERIFY(client.finished.wait(PatienceMs));
    QCOMPARE(client.finished.last().at(0).toString(),
             QStringLiteral("download_networkportdescriptions"));
    QCOMPARE(client.finished.last().at(1).toBool(), false);
    QVERIFY(!client.finished.last().at(2).toString().isEmpty());
    QCOMPARE(readFile(client.path()), QByteArray("old"));
    QVERIFY(!client.hasPart());
    QCOMPARE(client.lastCheck() > 0, counts);
}

void DownloadsTest::asksForNewerFilesOnly()
{
    DataFileClient client;
    client.server.script.body = "good";
    client.server.script.headers = "Last-Modified: Tue, 03 Mar 2020 04:05:06 GMT\r\n";
    QVERIFY(client.update());
    QCOMPARE(client.server.requests.last().header("If-Modified-Since"), QByteArray());
    Settings::instance().setValue(client.file.lastCheck, qint64(0));
    client.server.script = {.status = 304};
    QVERIFY(!client.update());
    QCOMPARE(client.server.requests.last().header("If-Modified-Since"),
             QByteArray("Tue, 03 Mar 2020 04:05:06 GMT"));
    QCOMPARE(readFile(client.path()), QByteArray("good"));
    QVERIFY(client.lastCheck() > 0);
}

void DownloadsTest::checksWhenDue_data()
{
    QTest::addColumn<bool>("hasFile");
    QTest::addColumn<qint64>("hoursSince");
    QTest::addColumn<bool>("due");
    QTest::newRow("a week") << true << Q_INT64_C(168) << true;
    QTest::newRow("less than a week") << true << Q_INT64_C(167) << false;
    QTest::newRow("the clock went back") << true << Q_INT64_C(-10) << true;
    QTest::newRow("missing, a day") << false << Q_INT64_C(24) << true;
    QTest::newRow("missing, less than a day") << false << Q_INT64_C(23) << false;
}

void DownloadsTest::checksWhenDue()
{
    QFETCH(bool, hasFile);
    QFETCH(qint64, hoursSince);
    QFETCH(bool, due);
    DataFileClient client;
    client.server.script.body = "good";
    QVERIFY(!hasFile || writeFile(client.path(), "old"));
    Settings::instance().setValue(client.file.lastCheck,
                                  QDateTime::currentSecsSinceEpoch() - hoursSince * 3600);
    client.download.update(DataFileDownload::Trigger::WhenDue, DataFileDownload::Asker::Client);
    QCOMPARE(client.download.isRunning(), due);
    QVERIFY(!due || client.finished.wait(PatienceMs));
    QCOMPARE(readFile(client.path()), due ? "good" : (hasFile ? "old" : QByteArray()));
}

void DownloadsTest::staysOffTheNetwork_data()
{
    QTest::addColumn<bool>("offline");
    QTest::addColumn<QString>("address");
    QTest::newRow("work offline") << true << QStringLiteral("http://127.0.0.1:9");
    QTest::newRow("built-in address")
        << false << QStringLiteral("https://releases.tallyvane.example");
    QTest::newRow("no address") << false << QString();
}

void DownloadsTest::staysOffTheNetwork()
{
    QFETCH(bool, offline);
    QFETCH(QString, address);
    DataFileClient client;
    Settings::instance().setValue(SettingsKeys::WorkOffline, offline);
    client.download.setReleaseAddress(QUrl(address));
    const LogCapture log;
    client.download.update(DataFileDownload::Trigger::WhenDue, DataFileDownload::Asker::Client);
    QVERIFY(!client.download.isRunning());
    QCOMPARE(client.finished.size(), 0);
    QCOMPARE(log.text(), QString());
    client.download.update(DataFileDownload::Trigger::Now, DataFileDownload::Asker::User);
    QVERIFY(!client.download.isRunning());
    QVERIFY(!client.finished.last().at(2).toString().isEmpty());
}

void DownloadsTest::waitsAfterAFailure()
{
    DataFileClient client;
    client.server.script = {.manner = Manner::CutAnswer, .body = "good"};
    QVERIFY(!client.update(DataFileDownload::Trigger::WhenDue));
    client.server.script.manner = Manner::Answer;
    client.download.update(DataFileDownload::Trigger::WhenDue, DataFileDownload::Asker::Client);
    QVERIFY(!client.download.isRunning());
    QVERIFY(client.update());
}

void DownloadsTest::fetchesABackup()
{
    const QTemporaryDir directory;
    ScriptedServer server;
    server.script.body = QByteArray(5'000'000, 'z');
    BackupDownload download(directory.path());
    QSignalSpy wanted(&download, &BackupDownload::signalNeedDownloadURL);
    QSignalSpy progress(&download, &BackupDownload::progress);
    QSignalSpy finished(&download, &BackupDownload::finished);
    const LogCapture log;
    QVERIFY(download.start(QStringLiteral("2026-11-01.zip")));
    QVERIFY(!download.start(QStringLiteral("another.zip")));
    QCOMPARE(wanted.last().at(0).toString(), QStringLiteral("2026-11-01.zip"));
    const QVariantMap data{
        {QStringLiteral("url"), server.url(QStringLiteral("/b?right=secret")).toString()}};
    download.processGetDatabaseBackupDownloadURL(QStringLiteral("zurge"), 200, data, {});
    QCOMPARE(server.requests.size(), 0);
    download.processGetDatabaseBackupDownloadURL(QStringLiteral("get_db_backup_download_url"), 200,
                                                 data, {});
    QVERIFY(finished.wait(PatienceMs));
    QCOMPARE(finished.last().at(0).value<BackupDownload::Outcome>(), BackupDownload::Outcome::Done);
    QCOMPARE(download.archive(), directory.filePath(QStringLiteral("tallyvane-restore.db.zip")));
    QVERIFY(readFile(download.archive()) == server.script.body);
    QCOMPARE(progress.last().at(0).toLongLong(), server.script.body.size());
    QCOMPARE(progress.last().at(1).toLongLong(), server.script.body.size());
    QCOMPARE(QFile::permissions(download.archive()) & (QFile::ReadGroup | QFile::ReadOther),
             QFile::Permissions());
    QVERIFY(!log.contains(QStringLiteral("secret")));
}

void DownloadsTest::tellsWhyNoBackupCame_data()
{
    QTest::addColumn<int>("addressStatus");
    QTest::addColumn<QString>("address");
    QTest::addColumn<int>("manner");
    QTest::addColumn<int>("mostBytes");
    const QString here = QStringLiteral("here");
    const int answer = static_cast<int>(Manner::Answer);
    QTest::newRow("the service refuses") << 500 << here << answer << -1;
    QTest::newRow("no address") << 200 << QString() << answer << -1;
    QTest::newRow("a local file") << 200 << QStringLiteral("file:///etc/passwd") << answer << -1;
    QTest::newRow("not there any more") << 200 << QStringLiteral("missing") << answer << -1;
    QTest::newRow("nobody there") << 200 << QStringLiteral("http://127.0.0.1:1/") << answer << -1;
    QTest::newRow("cut off") << 200 << here << static_cast<int>(Manner::CutAnswer) << -1;
    QTest::newRow("stands still") << 200 << here << static_cast<int>(Manner::StandStill) << -1;
    QTest::newRow("disk full") << 200 << here << answer << 200'000;
}

void DownloadsTest::tellsWhyNoBackupCame()
{
    QFETCH(int, addressStatus);
    QFETCH(QString, address);
    QFETCH(int, manner);
    QFETCH(int, mostBytes);
    const QTemporaryDir directory;
    ScriptedServer server;
    const bool isMissing = address == QLatin1String("missing");
    server.script = {.manner = static_cast<Manner>(manner),
                     .status = isMissing ? 404 : 200,
                     .body = QByteArray(500'000, 'z')};
    BackupDownload download(directory.path(), nullptr, StallTimeout);
    QSignalSpy finished(&download, &BackupDownload::finished);
    std::optional<FileSizeLimit> limit;
    if (mostBytes > 0) {
        limit.emplace(static_cast<rlim_t>(mostBytes));
    }
    const LogCapture log;
    QVERIFY(download.start(QStringLiteral("backup.zip")));
    const bool isHere = isMissing || address == QLatin1String("here");
    download.processGetDatabaseBackupDownloadURL(
        QStringLiteral("get_db_backup_download_url"), addressStatus,
        {{QStringLiteral("url"),
          isHere ? server.url(QStringLiteral("/b?right=secret")).toString() : address}},
        QStringLiteral("The service says no."));
    QVERIFY(!finished.isEmpty() || finished.wait(PatienceMs));
    QCOMPARE(finished.last().at(0).value<BackupDownload::Outcome>(),
             BackupDownload::Outcome::Failed);
    QVERIFY(!finished.last().at(1).toString().isEmpty());
    QVERIFY(!finished.last().at(1).toString().contains(QStringLiteral("secret")));
    QVERIFY(!log.contains(QStringLiteral("secret")));
    QVERIFY(!download.isRunning());
    QVERIFY(QDir(directory.path()).isEmpty());
}

void DownloadsTest::canBeCancelled()
{
    const QTemporaryDir directory;
    ScriptedServer server;
    server.script = {.manner = Manner::StandStill};
    BackupDownload download(directory.path());
    QSignalSpy finished(&download, &BackupDownload::finished);
    const auto answer = [&](const QString& path) {
        download.processGetDatabaseBackupDownloadURL(
            QStringLiteral("get_db_backup_download_url"), 200,
            {{QStringLiteral("url"), server.url(path).toString()}}, {});
    };
    for (const bool early : {true, false}) {
        QVERIFY(download.start(QStringLiteral("backup.zip")));
        if (!early) {
            answer(QStringLiteral("/of-the-first"));
            answer(QStringLiteral("/of-the-second"));
            QTRY_COMPARE(server.requests.size(), 1);
            QCOMPARE(server.requests.last().firstLine(), QByteArray("GET /of-the-second HTTP/1.1"));
        }
        download.cancel();
        QCOMPARE(finished.size(), 1);
        QCOMPARE(finished.takeFirst().at(0).value<BackupDownload::Outcome>(),
                 BackupDownload::Outcome::Cancelled);
        QVERIFY(!download.isRunning());
    }
    QTest::qWait(50);
    QCOMPARE(finished.size(), 0);
    QVERIFY(QDir(directory.path()).isEmpty());
}

void DownloadsTest::trustsWhomRequestsTrust_data()
{
    QTest::addColumn<bool>("isKnown");
    QTest::newRow("known authority") << true;
    QTest::newRow("unknown authority") << false;
}

void DownloadsTest::trustsWhomRequestsTrust()
{
    QFETCH(bool, isKnown);
    static const ServiceCertificates known = ServiceCertificates::make();
    const QSslConfiguration usual = QSslConfiguration::defaultConfiguration();
    QSslConfiguration wider = usual;
    wider.addCaCertificate(known.authority);
    QSslConfiguration::setDefaultConfiguration(wider);
    const QSslConfiguration& trust = TlsTrust::configuration();
    QSslConfiguration::setDefaultConfiguration(usual);
    if (!trust.caCertificates().contains(known.authority)) {
        QSKIP("Whom to trust was settled by another test class of this run.");
    }
    const ServiceCertificates shown = isKnown ? known : ServiceCertificates::make();
    QSslConfiguration tls = usual;
    tls.setLocalCertificate(shown.server);
    tls.setPrivateKey(shown.serverKey);
    const WireServer server(tls, answerFine);
    const TestDatabase test;

    FileDownload download;
    QSignalSpy downloaded(&download, &FileDownload::finished);
    download.start({.url = QUrl(server.url()),
                    .path = test.directory() + QStringLiteral("/file"),
                    .mostBytes = Fine.size()});
    QVERIFY(downloaded.wait(20'000));
    QCOMPARE(downloaded.first().first().value<FileDownload::Result>(),
             isKnown ? FileDownload::Result::Done : FileDownload::Result::Failed);

    DatabaseBackupUtility backup(*test.database(), Settings::instance());
    backup.setTlsConfiguration(trust);
    connect(&backup, &DatabaseBackupUtility::signalNeedUploadURL, &backup, [&] {
        backup.processGetDatabaseBackupUploadURL(QStringLiteral("get_db_backup_upload_url"), 200,
                                                 {{QStringLiteral("url"), server.url()}}, {});
    });
    QSignalSpy uploaded(&backup, &DatabaseBackupUtility::signalBackupFinished);
    backup.startBackup();
    QVERIFY(uploaded.wait(20'000));
    QCOMPARE(uploaded.first().first().toBool(), isKnown);
}

REGISTER_TEST(DownloadsTest);
#include "DownloadsTest.moc"
