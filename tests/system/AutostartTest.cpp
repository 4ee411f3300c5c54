// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/TestRegistry.h"
#include "system/Autostart.h"
#include "system/FixtureRoot.h"

#include <QTest>

#include <gio/gdesktopappinfo.h>

class AutostartTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void writesAnEntryThatStartsTheProgram_data();
    void writesAnEntryThatStartsTheProgram();
    void comesAndGoes();
    void hidesTheEntryForAllUsers();
    void tellsOfFailure();

private:
    QByteArray content() const
    {
        QFile file(Autostart::filePath());
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    std::unique_ptr<FixtureRoot> m_root;
};

void AutostartTest::init()
{
    m_root = std::make_unique<FixtureRoot>();
    qputenv("XDG_CONFIG_HOME", m_root->filePath(QStringLiteral("user")).toLocal8Bit());
    qputenv("XDG_CONFIG_DIRS", m_root->filePath(QStringLiteral("all")).toLocal8Bit());
}

void AutostartTest::cleanup()
{
    qunsetenv("XDG_CONFIG_HOME");
    qunsetenv("XDG_CONFIG_DIRS");
}

void AutostartTest::writesAnEntryThatStartsTheProgram_data()
{
    QTest::addColumn<QString>("directory");
    QTest::newRow("plain") << QStringLiteral("bin");
    QTest::newRow("spaces and quotes") << QStringLiteral("My \"Apps\" 'here'");
    QTest::newRow("shell signs") << QStringLiteral("$HOME `x` \\");
    QTest::newRow("not ASCII") << QString::fromUtf8("Zürich");
}

void AutostartTest::writesAnEntryThatStartsTheProgram()
{
    QFETCH(QString, directory);
    const QString program = directory + QStringLiteral("/tallyvane");
    const QString output = m_root->filePath(QStringLiteral("output"));
    QVERIFY(m_root->write(program, "#!/bin/sh\nprintf '%s' \"$*\" > \"$OUTPUT\"\n",
                          QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    QVERIFY(Autostart(m_root->filePath(program)).follow(true));
    // The desktop's own reader starts it.
    qputenv("OUTPUT", output.toLocal8Bit());
    GDesktopAppInfo* info =
        g_desktop_app_info_new_from_filename(QFile::encodeName(Autostart::filePath()).constData());
    QVERIFY(info);
    QVERIFY(g_app_info_launch(G_APP_INFO(info), nullptr, nullptr, nullptr));
    g_object_unref(info);
    const auto written = [&output] {
        QFile file(output);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    };
    QTRY_COMPARE(written(), QByteArray("onstartup"));
}

void AutostartTest::comesAndGoes()
{
    const Autostart autostart(QStringLiteral("/usr/bin/tallyvane"));
    QVERIFY(autostart.follow(false)); // There was none.
    QVERIFY(autostart.follow(true));
    QVERIFY(autostart.follow(false));
    QVERIFY(!QFile::exists(Autostart::filePath()));
}

void AutostartTest::hidesTheEntryForAllUsers()
{
    QVERIFY(m_root->write(QStringLiteral("all/autostart/tallyvane.desktop"), "[Desktop Entry]\n"));
    const Autostart autostart(QStringLiteral("/usr/bin/tallyvane"));
    QVERIFY(autostart.follow(false));
    QVERIFY(content().contains("Hidden=true"));
    QVERIFY(autostart.follow(true));
    QVERIFY(!content().contains("Hidden"));
}

void AutostartTest::tellsOfFailure()
{
    QVERIFY(m_root->write(QStringLiteral("user"), "a file where the directory should be"));
    QVERIFY(!Autostart(QStringLiteral("/usr/bin/tallyvane")).follow(true));
}

REGISTER_TEST(AutostartTest);
#include "AutostartTest.moc"
