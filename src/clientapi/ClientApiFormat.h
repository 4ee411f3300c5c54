// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

/// How the client API writes amounts for people: the same in every language, so that a program may
/// show them as they are or take them apart. Whole numbers are grouped by commas ("1,234");
/// fractions have two digits after a comma ("8,12"). Pure functions, for any thread.
namespace ClientApiFormat {

/// "1,234,567".
QString count(quint64 value);

/// Bytes in the largest unit of 1024s that is reached, from B to EB: "0,00B", "489,00MB".
QString bytes(quint64 value);

/// Something per second, from 0: "8,12".
QString rate(double perSecond);

/// Bytes per second: "317,49KB/s".
QString byteRate(double bytesPerSecond);

/// From the largest unit that is reached down to seconds: "36s", "1h, 0m, 5s", "1d, 10h, 17m, 36s".
/// There is none above days.
QString duration(quint64 seconds);

/// Whole miles: "116m".
QString miles(quint64 value);

/// Inches as miles, with two digits below a hundred miles ("0,08m") and whole from there on.
QString inchesAsMiles(quint64 inches);

/// A rank: "1st", "11th", "123rd", "1,234th". 0, no rank, is "0th".
QString ordinal(quint64 rank);

} // namespace ClientApiFormat
