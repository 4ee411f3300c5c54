// SPDX-License-Identifier: GPL-3.0-or-later
// Qt's HTTP server with nothing but one route, "/", that answers a constant: what
// tests/bench/client-api holds the client API against.
//
//   BareHttpServer LENGTH
//
// The constant is LENGTH bytes long. Prints its port, and serves until it is ended.
#include <QByteArray>
#include <QCoreApplication>
#include <QHostAddress>
#include <QHttpServer>
#include <QTcpServer>

#include <cstdio>
#include <cstdlib>
#include <memory>

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    const int length = argc == 2 ? QByteArray(argv[1]).toInt() : 0;
    if (length <= 0) {
        std::fprintf(stderr, "usage: BareHttpServer LENGTH\n");
        return EXIT_FAILURE;
    }
    const QByteArray body(length, 'x');
    QHttpServer http;
    http.route(QStringLiteral("/"),
               [&body] { return QHttpServerResponse("application/json", body); });
    auto server = std::make_unique<QTcpServer>();
    if (!server->listen(QHostAddress(QHostAddress::LocalHost))) {
        std::fprintf(stderr, "BareHttpServer: %s\n", qPrintable(server->errorString()));
        return EXIT_FAILURE;
    }
    std::printf("%d\n", server->serverPort());
    std::fflush(stdout);
    http.bind(server.release());
    return QCoreApplication::exec();
}
