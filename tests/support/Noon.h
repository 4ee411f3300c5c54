// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QDateTime>

#include <ctime>

/// Makes it the hour after noon wherever and whenever a test runs, for as long as this lives: for
/// tests of what compares days up to the present time of day. Thread: main, and no other may run.
class Noon
{
public:
    Noon()
    {
        // As POSIX writes it: the hours to add to local time for UTC.
        const int hours = QDateTime::currentDateTimeUtc().time().hour() - 12;
        qputenv("TZ", "NOON" + QByteArray::number(hours));
        tzset();
    }

    ~Noon()
    {
        if (m_zone.isNull()) {
            qunsetenv("TZ");
        } else {
            qputenv("TZ", m_zone);
        }
        tzset();
    }

    Noon(const Noon&) = delete;
    Noon& operator=(const Noon&) = delete;

private:
    const QByteArray m_zone = qgetenv("TZ");
};
