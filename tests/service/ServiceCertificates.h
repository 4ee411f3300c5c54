// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QSslCertificate>
#include <QSslKey>

/// A certificate authority made a moment ago, and what a server on this machine needs to be
/// believed by who believes the authority. Plain value.
struct ServiceCertificates
{
    QSslCertificate authority;
    QSslCertificate server;
    QSslKey serverKey;

    /// For a server of these names, as OpenSSL lists them. The parts are null where OpenSSL failed.
    static ServiceCertificates make(const char* names = "IP:127.0.0.1,DNS:localhost");
};
