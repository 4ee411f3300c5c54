// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QCoreApplication>
#include <QString>
#include <QVariant>

/// Reads JSON (RFC 8259) into a tree of `QVariant`: objects become `QVariantMap`, arrays
/// `QVariantList`, strings `QString`, whole numbers `qlonglong`, other numbers `double`, true and
/// false `bool`, null an invalid variant. Of a name that an object holds twice, the last counts.
///
/// Takes any bytes; input nested deeper or larger than the limits is an error like any other. So is
/// a number of 2^63 or beyond, however it is written: what cannot be kept exactly is not rounded in
/// silence.
class JsonReader
{
    Q_DECLARE_TR_FUNCTIONS(JsonReader)

public:
    static constexpr int DeepestNesting = 512;
    static constexpr qsizetype LargestInput = qsizetype{64} * 1024 * 1024; ///< Bytes of UTF-8.

    /// False where the text is not one JSON object or array; then `result` is null and
    /// `errorString` says what is wrong and at which byte.
    bool parse(const QString& text);
    bool parse(const QByteArray& utf8);

    QVariant result() const;
    QString errorString() const; ///< Empty after a success.

private:
    bool fail(const QString& error);
    bool keepsLimits(const QByteArray& utf8);

    QVariant m_result;
    QString m_error;
};
