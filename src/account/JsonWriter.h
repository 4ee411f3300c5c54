// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QVariant>

/// Writes a tree of `QVariant` as JSON (RFC 8259): the reverse of `JsonReader`. 64-bit numbers stay
/// exact, strings stay strings; a number that JSON cannot carry (infinite, not a number), a type
/// that it does not know, and a nesting beyond `JsonReader::DeepestNesting` are errors.
class JsonWriter
{
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
