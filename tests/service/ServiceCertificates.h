// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QSslCertificate>
#include <QSslKey>

/// A certificate authority made a moment ago, and what a server on this machine needs to be
/// believed by who believes the authority. Plain value.
struct ServiceCertificates
{
    QSslCertificate authority;
    QSslCertificate server; ///< For 127.0.0.1 and localhost.
    QSslKey serverKey;

    /// The parts are null where OpenSSL failed.
    static ServiceCertificates make();
};
