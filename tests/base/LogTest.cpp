// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/Log.h"
#include "base/SnapStandardPaths.h"
#include "support/TestRegistry.h"

#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

class LogTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void writesWhatTheLevelAdmits();
    void routesQtMessagesOnceAndCannotBeForged();
    void keepsThreeOldFiles();
    void survivesAMissingDirectory();
    void findsTheDataDirectory_data();
    void findsTheDataDirectory();

private:
    static QString read(const QTemporaryDir& directory);
};

QString LogTest::read(const QTemporaryDir& directory)
{
    QFile file(directory.filePath(QStringLiteral("app.log")));
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

void LogTest::writesWhatTheLevelAdmits()
{
    const QTemporaryDir directory;
    Log::start(directory.path());
    Log::debug("hidden {}", 1);
    Log::info("Database file: {}", QStringLiteral("/tmp/ä.db"));
    Log::setLevel(Log::Level::Trace);
    Log::trace("shown {}", 2);
    Log::warn("with a line feed of its own\n");
    Log::fatal("the end");
    Log::stop();
    Log::error("after the end");

    const QString text = read(directory);
    QVERIFY(text.contains(QStringLiteral("info Database file: /tmp/ä.db")));
    QVERIFY(text.contains(QStringLiteral("trace shown 2")));
    QVERIFY(text.contains(QStringLiteral("warn with a line feed of its own\n")));
    QVERIFY(text.endsWith(QStringLiteral("fatal the end\n")));
    QVERIFY(!text.contains(QStringLiteral("hidden")));
    QVERIFY(!text.contains(QStringLiteral("after the end")));
    const QFileInfo file(directory.filePath(QStringLiteral("app.log")));
    QCOMPARE(file.permissions() & (QFile::ReadGroup | QFile::ReadOther), QFile::Permissions());
}

void LogTest::routesQtMessagesOnceAndCannotBeForged()
{
    const QTemporaryDir directory;
    Log::start(directory.path());
    Log::installQtMessageHandler();
    qWarning("a warning from Qt");
    qWarning("QFont::setPointSize: Point size <= 0");
    Log::info("Creating device listener for {}", QStringLiteral("/dev/x\nerror forged\x1b[2J"));
    Log::stop();

    const QString text = read(directory);
    QCOMPARE(text.count(QStringLiteral("a warning from Qt")), 1);
    QVERIFY(text.contains(QStringLiteral("\\nerror forged\\x1b[2J")));
    QCOMPARE(text.count(QLatin1Char('\n')), 2);
}

void LogTest::keepsThreeOldFiles()
{
    const QTemporaryDir directory;
    Log::start(directory.path());
    const QString line(100'000, QLatin1Char('x'));
    constexpr int linesForSixFiles = 330;
    for (int i = 0; i < linesForSixFiles; ++i) {
        Log::info("{}", line);
    }
    Log::stop();
    QCOMPARE(QDir(directory.path()).entryList(QDir::Files).size(), 4);
    for (const QFileInfo& file : QDir(directory.path()).entryInfoList(QDir::Files)) {
        QVERIFY(file.size() <= 5'242'880);
    }
}

void LogTest::survivesAMissingDirectory()
{
    Log::start(QStringLiteral("/proc/no-such-directory"));
    Log::info("still running");
    Log::stop();
}

void LogTest::findsTheDataDirectory_data()
{
    QTest::addColumn<QByteArray>("snap");
    QTest::addColumn<QByteArray>("xdg");
    QTest::addColumn<QString>("directory");
    QTest::newRow("home") << QByteArray() << QByteArray()
                          << QString(QDir::homePath() + QStringLiteral("/.local/share/Tallyvane"));
    QTest::newRow("XDG") << QByteArray() << QByteArray("/data")
                         << QStringLiteral("/data/Tallyvane");
    QTest::newRow("Snap before XDG") << QByteArray("/snap") << QByteArray("/data")
                                     << QStringLiteral("/snap/.local/share/Tallyvane");
}

void LogTest::findsTheDataDirectory()
{
    QFETCH(QByteArray, snap);
    QFETCH(QByteArray, xdg);
    qputenv("SNAP_USER_DATA", snap);
    qputenv("XDG_DATA_HOME", xdg);
    const QString found = SnapStandardPaths::writableLocation(QStandardPaths::AppDataLocation);
    qunsetenv("SNAP_USER_DATA");
    qunsetenv("XDG_DATA_HOME");
    QTEST(found, "directory");
}

REGISTER_TEST(LogTest);
#include "LogTest.moc"
