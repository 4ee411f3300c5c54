// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "account/FileDownload.h"
#include "storage/SettingKey.h"

#include <QElapsedTimer>
#include <QObject>
#include <QString>
#include <QUrl>

#include <functional>

class Settings;

/// Keeps one data file up to date with the release server's: the country database or the list of
/// ports. A new one is downloaded beside the old one, checked, and only then takes its place.
/// Thread: main.
class DataFileDownload : public QObject
{
    Q_OBJECT

public:
    /// Says what is wrong with the file at a path; empty where it can be used. Runs on the main
    /// thread.
    using Check = std::function<QString(const QString& path)>;

    /// What the file is. Plain value.
    struct DataFile
    {
        QString requestType; ///< Its name in the log and in `finished`.
        QString fileName;    ///< In the data directory and on the server.
        qint64 mostBytes = 0;
        SettingKey<qint64> lastCheck; ///< Seconds since the epoch.
        QString successLine;          ///< Logged when a new file is in place.

        static DataFile countryDatabase();
        static DataFile portDescriptions();
    };

    enum class Trigger
    {
        WhenDue, ///< The last check was long ago, and the server did not fail to answer just now.
        Now,
    };

    /// Who asked is who is told.
    enum class Asker
    {
        User,
        Client, ///< The maintenance: what keeps a check from being made is not even logged.
    };

    static constexpr int DaysBetweenChecks = 7;
    static constexpr int DaysBetweenChecksWithoutFile = 1;

    /// `settings` outlives this object.
    DataFileDownload(DataFile file, const QString& dataDirectory, Check check, Settings& settings,
                     QObject* parent = nullptr,
                     std::chrono::milliseconds stallTimeout = FileDownload::StallTimeout);

    /// The server's address, without a slash at the end. Nothing is fetched from one under a domain
    /// that cannot exist, such as the build's own.
    void setReleaseAddress(const QUrl& release);

    /// Looks for a newer file. Not while the settings say to work offline, nor without an address:
    /// then a user is told by `finished`, and the client is not.
    void update(Trigger trigger, Asker asker);

    void cancel() { m_download.cancel(); }

    bool isRunning() const { return m_download.isRunning(); }

    bool isMissing() const; ///< Whether there is no such file yet.

Q_SIGNALS:
    void progress(qint64 received, qint64 total); ///< Bytes; total -1: unknown.

    /// `replaced`: a new file is in place. Else the old one still is, if there was one; it may be
    /// up to date, and then `message`, for the user to read, is empty.
    void finished(const QString& requestType, bool replaced, const QString& message);

private:
    bool isDue() const;
    QString obstacle() const;
    void takeEnd(FileDownload::Result result, const QString& message);
    void takeFile();
    void fail(const QString& message);
    void noteCheck();
    QString partFileName() const;

    const DataFile m_file;
    const QString m_path;
    const Check m_check;
    Settings& m_settings;
    QUrl m_release;
    QElapsedTimer m_lastFailure; ///< Invalid until there is one.
    FileDownload m_download;
};
