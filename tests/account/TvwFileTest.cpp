// SPDX-License-Identifier: GPL-3.0-or-later
#include "account/TvwFile.h"
#include "support/TestFiles.h"
#include "support/TestRegistry.h"

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>
#include <QScopeGuard>
#include <QTemporaryDir>
#include <QTest>

#include <unistd.h>

namespace {

TvwContent sample(quint64 keys)
{
    const QString editor = QStringLiteral("/usr/bin/editor");
    return {.counts = {.generation = keys,
                       .totals = {.keys = keys},
                       .applications = {{editor, {.keys = keys}}}},
            .account = {}};
}

QByteArray machine()
{
    return "0123456789abcdef";
}

QByteArray otherMachine()
{
    return "fedcba9876543210";
}

} // namespace

class TvwFileTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void savesForThisUserAlone();
    void keepsTheSaltAndChangesTheNonce();
    void movesAsideWhatItCannotUse_data();
    void movesAsideWhatItCannotUse();
    void keepsEveryFileMovedAside();
    void leavesAnUnreadableFileAlone();
    void failsWhereItCannotWrite();

private:
    QStringList movedAside() const;

    std::unique_ptr<QTemporaryDir> m_directory;
    QString m_path;
};

void TvwFileTest::init()
{
    m_directory = std::make_unique<QTemporaryDir>();
    m_path = m_directory->filePath(TvwFile::FileName);
}

QStringList TvwFileTest::movedAside() const
{
    return QDir(m_directory->path())
        .entryList({QStringLiteral("tallyvane.tvw.damaged-*")}, QDir::Files);
}

void TvwFileTest::savesForThisUserAlone()
{
    TvwFile file(m_directory->path(), machine);
    QVERIFY(!file.save(sample(1)));
    QVERIFY(!file.load());
    QVERIFY(file.save(sample(2)));
    QVERIFY(TvwFile(m_directory->path(), machine).load() == sample(2));
    const QFileDevice::Permissions others = QFileDevice::ReadGroup | QFileDevice::WriteGroup |
                                            QFileDevice::ReadOther | QFileDevice::WriteOther;
    QCOMPARE(QFile::permissions(m_path) & others, QFileDevice::Permissions());
    QCOMPARE(QDir(m_directory->path()).entryList(QDir::Files), {TvwFile::FileName});
}

void TvwFileTest::keepsTheSaltAndChangesTheNonce()
{
    TvwFile first(m_directory->path(), machine);
    first.load();
    QVERIFY(first.save(sample(1)));
    const QByteArray before = readFile(m_path);
    TvwFile second(m_directory->path(), machine);
    second.load();
    QVERIFY(second.save(sample(1)));
    QCOMPARE(readFile(m_path).mid(10, 16), before.mid(10, 16));
    QVERIFY(readFile(m_path).mid(26, 12) != before.mid(26, 12));
}

void TvwFileTest::movesAsideWhatItCannotUse_data()
{
    QTest::addColumn<QByteArray>("kind");
    for (const char* kind : {"empty", "cut", "changed", "foreign machine", "text"}) {
        QTest::newRow(kind) << QByteArray(kind);
    }
}

void TvwFileTest::movesAsideWhatItCannotUse()
{
    QFETCH(QByteArray, kind);
    TvwFile writer(m_directory->path(), kind == "foreign machine" ? otherMachine : machine);
    writer.load();
    QVERIFY(writer.save(sample(1)));
    QByteArray bytes = readFile(m_path);
    if (kind == "empty") {
        bytes.clear();
    } else if (kind == "cut") {
        bytes.chop(1);
    } else if (kind == "changed") {
        bytes[40] = static_cast<char>(bytes.at(40) ^ 1);
    } else if (kind == "text") {
        bytes = "counts: 1";
    }
    QVERIFY(writeFile(m_path, bytes));

    TvwFile file(m_directory->path(), machine);
    QVERIFY(!file.load());
    QVERIFY(!file.exists());
    QCOMPARE(movedAside().size(), 1);
    const QRegularExpression name(QStringLiteral("^tallyvane\\.tvw\\.damaged-\\d{8}-\\d{6}$"));
    QVERIFY(name.match(movedAside().constFirst()).hasMatch());
    QCOMPARE(readFile(m_directory->filePath(movedAside().constFirst())), bytes);
    QVERIFY(file.save(sample(2)));
    QVERIFY(TvwFile(m_directory->path(), machine).load() == sample(2));
}

void TvwFileTest::keepsEveryFileMovedAside()
{
    constexpr int files = 20; // Far more than seconds pass.
    for (int i = 0; i < files; ++i) {
        QVERIFY(writeFile(m_path, QByteArray::number(i)));
        QVERIFY(!TvwFile(m_directory->path(), machine).load());
    }
    QCOMPARE(movedAside().size(), files);
    QSet<QByteArray> contents;
    for (const QString& name : movedAside()) {
        contents.insert(readFile(m_directory->filePath(name)));
    }
    QCOMPARE(contents.size(), files);
}

void TvwFileTest::leavesAnUnreadableFileAlone()
{
    TvwFile writer(m_directory->path(), machine);
    writer.load();
    QVERIFY(writer.save(sample(1)));
    const QByteArray before = readFile(m_path);
    QVERIFY(QFile::setPermissions(m_path, {}));
    // Permissions do not hold back the superuser, as whom tests run in some containers.
    constexpr uid_t nobody = 65534;
    if (::geteuid() == 0) {
        QCOMPARE(::chown(qPrintable(m_directory->path()), nobody, nobody), 0);
        QCOMPARE(::seteuid(nobody), 0);
    }
    const auto backToRoot = qScopeGuard([] { return ::getuid() == 0 && ::seteuid(0) == 0; });

    TvwFile file(m_directory->path(), machine);
    QVERIFY(!file.load());
    QVERIFY(!file.save(sample(2)));
    QVERIFY(file.exists());
    QCOMPARE(movedAside(), QStringList());
    if (::getuid() == 0) {
        QCOMPARE(::seteuid(0), 0);
    }
    QVERIFY(QFile::setPermissions(m_path, QFileDevice::ReadOwner));
    QCOMPARE(readFile(m_path), before);
}

void TvwFileTest::failsWhereItCannotWrite()
{
    QVERIFY(QDir().mkpath(m_directory->filePath(QStringLiteral("taken/tallyvane.tvw"))));
    for (const char* directory : {"missing", "taken"}) {
        TvwFile file(m_directory->filePath(QLatin1String(directory)), machine);
        QVERIFY(!file.load());
        QVERIFY(!file.save(sample(1)));
    }
    QVERIFY(QFileInfo(m_directory->filePath(QStringLiteral("taken/tallyvane.tvw"))).isDir());
}

REGISTER_TEST(TvwFileTest);
#include "TvwFileTest.moc"
