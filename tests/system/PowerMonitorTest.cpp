// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/TestRegistry.h"
#include "system/PowerMonitor.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QProcess>
#include <QSignalSpy>
#include <QStandardPaths>
#include <QTest>

namespace {

const QString Service = QStringLiteral("org.freedesktop.login1");

QDBusMessage announcement(const char* name, bool starting)
{
    QDBusMessage message = QDBusMessage::createSignal(
        QStringLiteral("/org/freedesktop/login1"), QStringLiteral("org.freedesktop.login1.Manager"),
        QLatin1String(name));
    message << starting;
    return message;
}

} // namespace

/// On a bus of its own, with a service that has logind's name.
class PowerMonitorTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanupTestCase();
    void hearsLogindAlone();

private:
    QDBusConnection connection(const char* name) const
    {
        return QDBusConnection::connectToBus(m_address, QLatin1String(name));
    }

    QProcess m_bus;
    QString m_address;
};

void PowerMonitorTest::initTestCase()
{
    if (QStandardPaths::findExecutable(QStringLiteral("dbus-daemon")).isEmpty()) {
        QSKIP("needs dbus-daemon");
    }
    m_bus.start(QStringLiteral("dbus-daemon"),
                {QStringLiteral("--session"), QStringLiteral("--nofork"),
                 QStringLiteral("--print-address=1")});
    QVERIFY(m_bus.waitForStarted() && m_bus.waitForReadyRead());
    m_address = QString::fromLatin1(m_bus.readLine().trimmed());
}

void PowerMonitorTest::cleanupTestCase()
{
    for (const char* name : {"service", "client"}) {
        QDBusConnection::disconnectFromBus(QLatin1String(name));
    }
    m_bus.terminate();
    m_bus.waitForFinished();
}

void PowerMonitorTest::hearsLogindAlone()
{
    QDBusConnection service = connection("service");
    QVERIFY(service.registerService(Service));
    const PowerMonitor monitor(connection("client"), Service);
    QSignalSpy suspended(&monitor, &PowerMonitor::suspended);
    QSignalSpy resumed(&monitor, &PowerMonitor::resumed);
    QSignalSpy ending(&monitor, &PowerMonitor::sessionEnding);
    QProcess impostor;
    impostor.start(QStringLiteral("dbus-send"),
                   {QStringLiteral("--bus=") + m_address, QStringLiteral("/org/freedesktop/login1"),
                    QStringLiteral("org.freedesktop.login1.Manager.PrepareForShutdown"),
                    QStringLiteral("boolean:true")});
    QVERIFY(impostor.waitForFinished());
    QCOMPARE(impostor.exitCode(), 0);
    // What comes after it on the bus arrives after it.
    service.send(announcement("PrepareForSleep", true));
    QTRY_COMPARE(suspended.count(), 1);
    QCOMPARE(ending.count(), 0);
    QCOMPARE(resumed.count(), 0);
    service.send(announcement("PrepareForSleep", false));
    QTRY_COMPARE(resumed.count(), 1);
    service.send(announcement("PrepareForShutdown", false)); // A shutdown was called off.
    service.send(announcement("PrepareForShutdown", true));
    QTRY_COMPARE(ending.count(), 1);
    QCOMPARE(suspended.count(), 1);
}

REGISTER_TEST(PowerMonitorTest);
#include "PowerMonitorTest.moc"
