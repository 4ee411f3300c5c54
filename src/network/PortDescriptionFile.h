// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "network/PortDescriptions.h"

#include <QByteArrayView>
#include <QList>
#include <QString>

/// What the text of a file of port descriptions holds: one record per line, as "80;TCP;World Wide
/// Web HTTP", in UTF-8, with or without a byte order mark and carriage returns. A description is
/// the rest of its line, whatever is in it; an empty one says that the port has none. Of two
/// records for one port, the later one counts. Empty lines, and headings that begin with
/// "Port;Transport", are passed over. Plain value.
struct PortDescriptionFile
{
    /// A line that is no record. Plain value.
    struct Fault
    {
        enum class Kind
        {
            MalformedLine,   ///< Fewer than two separators; `text` is the line.
            PortNotANumber,  ///< Or none from 0 to 65535; `text` is the field.
            UnknownProtocol, ///< `text` is the field, neither "TCP" nor "UDP".
        };

        Kind kind = Kind::MalformedLine;
        QString text;       ///< Its first 200 bytes.
        qsizetype line = 0; ///< From 1.
    };

    static constexpr qsizetype MostFaultsKept = 10;

    PortDescriptions descriptions;
    qsizetype lines = 0; ///< All lines of the text.
    qsizetype faultCount = 0;
    QList<Fault> faults; ///< The first `MostFaultsKept`.

    /// Reads the whole content of a file, however damaged or cut off. Any thread.
    static PortDescriptionFile parse(QByteArrayView text);

private:
    void addLine(QByteArrayView line);
    void addFault(Fault::Kind kind, QByteArrayView text);
};
