// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

/// Tells the requests of web pages, which the browser of the user makes on behalf of anybody, from
/// those of programs. A browser says truly which page asks (Origin), and which name the page's
/// script used (Host): a name that its owner let point to this machine is not one of this machine.
/// For any thread.
namespace WebPages {

/// Whether the value of a Host header names this machine as a program would: by an IPv4 or
/// bracketed IPv6 address, as "localhost", or by `machineName` (also with its domain left out),
/// each with or without a port, in any case. Without the header, which HTTP/1.0 allows: true.
bool isOwnHost(const QString& host, const QString& machineName);

/// Whether a request of this Origin comes from a program, or from the API's own page: no Origin,
/// "null", one of files ("file://"), or "http://" and this machine with the port `httpPort`: by one
/// of the addresses it has now (another machine serves its pages by address, too), or by a name for
/// which `isOwnHost` holds. Any other origin (a web page's, a browser extension's) is foreign.
bool isOwnOrigin(const QString& origin, quint16 httpPort, const QString& machineName);

/// Whether a browser hides which page asks: the origin is "null", as that of any site's sandboxed
/// frame, and `userAgent` is a browser's, which no page can change in such a request. A program
/// that says "null" calls itself something else.
bool isHiddenPage(const QString& origin, const QString& userAgent);

} // namespace WebPages
