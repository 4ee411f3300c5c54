// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/TestRegistry.h"
#include "system/DesktopEntries.h"
#include "system/FixtureRoot.h"

#include <QImage>
#include <QTest>

/// Names and icons from entries in directories of the test's own.
class DesktopEntriesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void names_data();
    void names();
    void icons();
    void cleanupTestCase();

private:
    QString program(const char* name) const { return m_root.filePath(QLatin1String(name)); }

    bool entry(const char* id, const QByteArray& lines, const char* where = "system") const;

    FixtureRoot m_root;
    QByteArray m_path = qgetenv("PATH");
};

bool DesktopEntriesTest::entry(const char* id, const QByteArray& lines, const char* where) const
{
    const QString file =
        QStringLiteral("%1/applications/%2.desktop").arg(QLatin1String(where), QLatin1String(id));
    QByteArray text = "[Desktop Entry]\nType=Application\n" + lines;
    return m_root.write(file, text.replace("@", m_root.path().toUtf8()));
}

void DesktopEntriesTest::initTestCase()
{
    qputenv("XDG_DATA_DIRS", m_root.filePath(QStringLiteral("system")).toLocal8Bit());
    qputenv("XDG_DATA_HOME", m_root.filePath(QStringLiteral("user")).toLocal8Bit());
    qputenv("LANGUAGE", "de");
    qputenv("PATH", m_root.filePath(QStringLiteral("bin")).toLocal8Bit() + ':' + m_path);
    for (const char* path : {"bin/edit", "bin/suite", "bin/tool", "bin/python3", "bin/flatpak",
                             "opt/browser/start", "opt/browser/browser-bin", "opt/my app/run"}) {
        QVERIFY(m_root.writeProgram(QLatin1String(path)));
    }
    QVERIFY(m_root.link(QStringLiteral("bin/browser"), program("opt/browser/start")));
    QVERIFY(entry("edit", "Name=Text Editor\nName[de]=Texteditor\nExec=edit %U\n"));
    QVERIFY(entry("suite-writer", "Name=Suite Writer\nExec=suite --writer %U\n"));
    QVERIFY(entry("suite-start", "Name=Suite\nExec=suite %U\n"));
    QVERIFY(entry("suite-hidden", "Name=Suite Handler\nNoDisplay=true\nExec=suite\n"));
    QVERIFY(entry("browser", "Name=Browser\nExec=browser %u\nStartupWMClass=Navigator\n"));
    QVERIFY(entry("script", "Name=Some Script\nExec=python3 /somewhere/main.py\n"));
    QVERIFY(entry("spaces", "Name=Spaced\nExec=env A=b \"@/opt/my app/run\"\n"));
    QVERIFY(
        entry("org.example.Box", "Name=Box\nExec=flatpak run --command=boxed org.example.Box\n"));
    QVERIFY(entry("absent", "Name=Absent\nExec=@/nowhere/gone\n"));
    QVERIFY(entry("deleted", "Name=Deleted\nHidden=true\nExec=tool\n"));
    QVERIFY(entry("both", "Name=Of all users\nExec=tool\n"));
    QVERIFY(entry("both", "Name=Of this user\nExec=tool\nIcon=@/icon.png\n", "user"));
    QVERIFY(m_root.write(QStringLiteral("system/applications/broken.desktop"),
                         "[Desktop Ent\nName=\xff\n"));
}

void DesktopEntriesTest::cleanupTestCase()
{
    qputenv("PATH", m_path);
    for (const char* variable : {"XDG_DATA_DIRS", "XDG_DATA_HOME", "LANGUAGE"}) {
        qunsetenv(variable);
    }
}

void DesktopEntriesTest::names_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("name");
    const auto row = [](const char* title, const QString& path, const char* name) {
        QTest::newRow(title) << path << QString::fromLatin1(name);
    };
    row("in the user's language", program("bin/edit"), "Texteditor");
    row("the whole suite before its parts", program("bin/suite"), "Suite");
    row("behind a link", program("opt/browser/start"), "Browser");
    row("started by a script beside it", program("opt/browser/browser-bin"), "Browser");
    row("by its windows' class", QStringLiteral("/usr/lib/x/navigator"), "Browser");
    row("an interpreter stays itself", program("bin/python3"), "python3");
    row("past a wrapper", program("opt/my app/run"), "Spaced");
    row("inside a sandbox", QStringLiteral("/app/bin/boxed"), "Box");
    row("the user's entry first", program("bin/tool"), "Of this user");
    row("no entry", QStringLiteral("/usr/lib/foo/bar.bin"), "bar.bin");
    row("nothing", QString(), "");
}

void DesktopEntriesTest::names()
{
    QFETCH(QString, path);
    DesktopEntries entries;
    QTEST(entries.name(path), "name");
}

void DesktopEntriesTest::icons()
{
    QImage picture(8, 8, QImage::Format_RGB32);
    picture.fill(Qt::red);
    QVERIFY(picture.save(m_root.filePath(QStringLiteral("icon.png"))));
    DesktopEntries entries;
    QCOMPARE(entries.icon(program("bin/tool")).pixmap(8).toImage().pixelColor(4, 4),
             QColor(Qt::red));
    QVERIFY(
        entries.icon(QStringLiteral("/usr/lib/foo/bar.bin")).pixmap(8).toImage().pixelColor(4, 4) !=
        QColor(Qt::red));
}

REGISTER_TEST(DesktopEntriesTest);
#include "DesktopEntriesTest.moc"
