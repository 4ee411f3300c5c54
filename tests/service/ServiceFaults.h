// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>
#include <QMetaType>
#include <QRandomGenerator>
#include <QString>

#include <optional>

/// What goes wrong with one request. Plain value.
struct Fault
{
    Q_GADGET

public:
    enum class Kind
    {
        None,       ///< Nothing; with a delay: late, but right.
        Status,     ///< The result code `status` (of an archive or a file: the HTTP status).
        Drop,       ///< The connection is cut without a word.
        Empty,      ///< An answer without a body.
        Truncated,  ///< Half of the body that Content-Length promises, then the end.
        Huge,       ///< A body beyond 32 MiB.
        Base64,     ///< The right answer, as base64.
        NotJson,    ///< Text that is no JSON.
        NoData,     ///< Status 200 without anything in `data`.
        WrongTypes, ///< The right fields, each with a value of another type.
        Negative,   ///< The right answer, each number in `data` negated.
        Hang,       ///< No answer; the connection stays.
    };
    Q_ENUM(Kind)

    enum class When
    {
        BeforeActing, ///< The request has no effect at the service.
        AfterActing,  ///< It has, but for `Kind::Status`.
    };

    Kind kind = Kind::None;
    When when = When::AfterActing;
    int status = 500;
    int delayMs = 0;
    int times = 1;            ///< How many requests it befalls.
    QString requestType = {}; ///< Empty: any.

    bool actsOnRequest() const;
};

/// Which fault befalls which request: those ordered, in order; after them, at random, where a soak
/// is on. Beside the request types there are "backup_put", "backup_get", "geoip_download",
/// "download_networkportdescriptions" and "version".
class ServiceFaults
{
public:
    void add(const Fault& fault);

    /// From now on a share (0 to 1) of the requests is befallen by any fault that there is, the
    /// same ones for the same seed and the same requests. Share 0 ends it.
    void soak(quint32 seed, double share);

    void clear(); ///< Ordered faults and soak.

    Fault take(const QString& requestType);

private:
    Fault randomFault();

    QList<Fault> m_ordered;
    QRandomGenerator m_random;
    double m_share = 0;
};
