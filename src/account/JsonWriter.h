// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QCoreApplication>
#include <QString>
#include <QVariant>

/// Writes a tree of `QVariant` as JSON (RFC 8259): the reverse of `JsonReader`. The tree's root is
/// a map or a list; members come out in the order of their names. 64-bit integers stay exact,
/// strings stay strings. Errors are: a number that the reader would refuse (2^63 and beyond,
/// infinite, not a number), a type that JSON does not know, and a nesting beyond
/// `JsonReader::DeepestNesting`.
class JsonWriter
{
    Q_DECLARE_TR_FUNCTIONS(JsonWriter)

public:
    /// False where the tree cannot be written; then `result` is empty.
    bool stringify(const QVariant& tree);

    QString result() const;
    QString errorString() const; ///< Empty after a success.

    void setAutoFormatting(bool enabled);    ///< Lines and indents; off at first.
    void setAutoFormattingIndent(int width); ///< Spaces per level; 4 at first.

private:
    QString m_result;
    QString m_error;
    bool m_autoFormatting = false;
    int m_indent = 4;
};
