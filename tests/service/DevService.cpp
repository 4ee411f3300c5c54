// SPDX-License-Identifier: GPL-3.0-or-later
// Runs the account service of the tests by itself, until it is ended by a signal.
#include "network/CountryFile.h"
#include "service/AccountService.h"
#include "service/ServiceControl.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDir>
#include <QFile>

#include <cstdio>

namespace {

QByteArray contentOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// One that opens, and knows the whole of IPv4 by two made-up countries.
QByteArray countryDatabase()
{
    return CountryFile(4, CountryFile::Layout::Nested).add("0", "AA").add("1", "ZZ").bytes();
}

/// What is there already stays: it may have been put there to be tried.
void provide(AccountService& service, const QDir& directory)
{
    const auto provideOne = [&service, &directory](const QString& name, const QByteArray& content) {
        if (!directory.exists(QStringLiteral("release/") + name)) {
            service.setReleaseFile(name, content);
        }
    };
    provideOne(QStringLiteral("GeoIP.dat"), countryDatabase());
    provideOne(QStringLiteral("network-ports.csv"),
               contentOf(QStringLiteral(TALLYVANE_SOURCE_DIR "/resources/network-ports.csv")));
    provideOne(QStringLiteral("version.json"),
               QByteArrayLiteral(
                   R"({"version":"5.8.0","beta_version":"","url":"https://tallyvane.example/"})"));
}

void printAddresses(const AccountService& service, quint16 controlPort, const QString& authority)
{
    std::printf("export TALLYVANE_API_URL=%s\n", qUtf8Printable(service.apiUrl()));
    std::printf("export TALLYVANE_WEBSITE_URL=%s\n", qUtf8Printable(service.websiteUrl()));
    std::printf("export TALLYVANE_RELEASE_URL=%s\n", qUtf8Printable(service.releaseUrl()));
    std::printf("# database:  %s\n", qUtf8Printable(service.databasePath()));
    std::printf("# authority: %s\n", qUtf8Printable(authority));
    std::printf("# control:   http://127.0.0.1:%d/control\n", controlPort);
    std::fflush(stdout);
}

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    QCommandLineParser parser;
    const QCommandLineOption port(QStringLiteral("port"),
                                  QStringLiteral("Where to listen; else a free port."),
                                  QStringLiteral("port"), QStringLiteral("0"));
    parser.setApplicationDescription(QStringLiteral("An account service for trying the client."));
    parser.addHelpOption();
    parser.addOption(port);
    const QCommandLineOption plain(
        QStringLiteral("plain"),
        QStringLiteral("Without TLS, so that nobody has to trust its certificate."));
    parser.addOption(plain);
    parser.addPositionalArgument(
        QStringLiteral("directory"),
        QStringLiteral("Where to keep accounts and archives; else in the build directory."),
        QStringLiteral("[directory]"));
    parser.process(application);
    const QDir directory(
        parser.positionalArguments().value(0, QStringLiteral(TALLYVANE_BUILD_DIR "/dev-service")));
    if (!directory.mkpath(QStringLiteral("."))) {
        std::fprintf(stderr, "Cannot make %s\n", qUtf8Printable(directory.path()));
        return 1;
    }
    AccountService service(directory.absolutePath(), parser.isSet(plain)
                                                         ? AccountService::Transport::Plain
                                                         : AccountService::Transport::Tls);
    ServiceControl control(service);
    const quint16 controlPort = control.start();
    if (!service.start(parser.value(port).toUShort()) || controlPort == 0) {
        std::fprintf(stderr, "Cannot listen on port %s\n", qUtf8Printable(parser.value(port)));
        return 1;
    }
    provide(service, directory);
    const QString authority = directory.absoluteFilePath(QStringLiteral("authority.pem"));
    QFile file(authority);
    if (!file.open(QIODevice::WriteOnly) || file.write(service.authority().toPem()) < 0) {
        std::fprintf(stderr, "Cannot write %s\n", qUtf8Printable(authority));
        return 1;
    }
    file.close();
    printAddresses(service, controlPort, authority);
    return QCoreApplication::exec();
}
