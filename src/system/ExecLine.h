// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>

/// The program that a desktop entry starts. Free functions over the entry's "Exec" value, see "The
/// Exec key" in freedesktop.org's Desktop Entry Specification. Any thread.
namespace ExecLine {

/// The words of an "Exec" value, quotes resolved and field codes such as "%U" left out; empty where
/// a quote is not closed.
QStringList words(const QString& exec);

/// What the words start, past "env" with its assignments and other programs that merely start
/// another. Empty for an interpreter, whose executable says nothing about the application.
struct Program
{
    QString name; ///< A path, or a name to look up in PATH.
    /// Started through flatpak: `name` is its program inside the sandbox.
    bool isSandboxed = false;
    bool hasArguments = false;
};

Program program(const QStringList& words);

/// `argument` quoted for an "Exec" value, so that `words` gives it back.
QString quoted(const QString& argument);

} // namespace ExecLine
