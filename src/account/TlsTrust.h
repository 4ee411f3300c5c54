// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>
#include <QSslCertificate>
#include <QSslConfiguration>
#include <QString>

/// How connections to the account service, and those that fetch files, are secured. Main thread.
namespace TlsTrust {

/// The configuration for every request: the TLS version is left to the TLS library; the certificate
/// authorities are Qt's own or, where it has none, the system's, and then those that the program
/// carries. Put together at the first call and kept, since reading some hundred certificates takes
/// longer than a request.
const QSslConfiguration& configuration();

/// The certificates of the bundles known to Linux distributions that exist below `root`, in the
/// order in which they are looked for, each one once.
QList<QSslCertificate> systemCertificates(const QString& root);

/// The certificates that the program carries. One that the build could not supply is logged and
/// left out.
QList<QSslCertificate> embeddedCertificates();

} // namespace TlsTrust
