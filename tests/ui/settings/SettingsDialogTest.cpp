// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/TestDatabase.h"
#include "support/TestRegistry.h"
#include "ui/settings/AddressList.h"
#include "ui/settings/ClientApiState.h"
#include "ui/settings/SettingsDialog.h"

#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QSignalSpy>
#include <QSpinBox>
#include <QTest>
#include <QUrl>

class SettingsDialogTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void storesAtOnceByKeysAlone();
    void storesAPortOnceItRests();
    void refusesEqualPorts();
    void storesWhatWasTypedWhenItCloses();
    void leavesAloneWhatNobodyTouched();
    void tellsOfTheAddresses_data();
    void tellsOfTheAddresses();
    void warnsWhileTheListIsEmpty();
    void tellsWhatIsSo_data();
    void tellsWhatIsSo();
    void followsChangesFromElsewhere();

private:
    void open();
    template <typename Widget>
    Widget* find(const char* name) const;
    void typeInto(const char* field, const char* text, Qt::Key after = Qt::Key_Tab) const;
    QString stored() const;

    std::unique_ptr<TestDatabase> m_database;
    QPointer<SettingsDialog> m_dialog; ///< Destroys itself.
    std::unique_ptr<QSignalSpy> m_changes;
};

void SettingsDialogTest::init()
{
    m_database = std::make_unique<TestDatabase>();
    open();
}

void SettingsDialogTest::open()
{
    m_dialog = new SettingsDialog;
    m_changes = std::make_unique<QSignalSpy>(m_dialog.data(), &SettingsDialog::settingsChanged);
    m_dialog->show();
    m_dialog->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_dialog.data()));
}

void SettingsDialogTest::cleanup()
{
    if (m_dialog) {
        m_dialog->close();
    }
    QTRY_VERIFY(!m_dialog);
    m_database.reset();
}

template <typename Widget>
Widget* SettingsDialogTest::find(const char* name) const
{
    return m_dialog->findChild<Widget*>(QLatin1String(name));
}

void SettingsDialogTest::typeInto(const char* field, const char* text, Qt::Key after) const
{
    auto* widget = find<QWidget>(field);
    widget->setFocus();
    QTest::keyClick(widget, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClick(widget, Qt::Key_Delete);
    QTest::keyClicks(widget, QLatin1String(text));
    QTest::keyClick(widget, after);
}

/// As the next start would read it: on, the two ports, the addresses.
QString SettingsDialogTest::stored() const
{
    return m_database->rows(QStringLiteral(
        "SELECT group_concat(value, ' ') FROM (SELECT value FROM settings WHERE name IN "
        "('client_api_http_enable', 'client_api_http_port', 'client_api_websocket_port', "
        "'client_api_http_allowed_ips') ORDER BY name = 'client_api_http_allowed_ips', name)"));
}

void SettingsDialogTest::storesAtOnceByKeysAlone()
{
    QCOMPARE(stored(), QStringLiteral("0 3490 3489 127.0.0.1,::1,::ffff:127.0.0.1"));
    QTest::keyClick(m_dialog, Qt::Key_L, Qt::AltModifier);
    QTRY_COMPARE(stored(), QStringLiteral("1 3490 3489 127.0.0.1,::1,::ffff:127.0.0.1"));
    QTest::keyClick(m_dialog, Qt::Key_H, Qt::AltModifier);
    QVERIFY(find<QSpinBox>("httpPort")->hasFocus());
    typeInto("httpPort", "8080", Qt::Key_Return);
    QTest::keyClick(m_dialog, Qt::Key_W, Qt::AltModifier);
    QVERIFY(find<QSpinBox>("websocketPort")->hasFocus());
    typeInto("websocketPort", "65535");
    QVERIFY(find<QLineEdit>("addresses")->hasFocus());
    typeInto("addresses", " ::1 ,10.0.0.1", Qt::Key_Return);
    QCOMPARE(stored(), QStringLiteral("1 8080 65535 ::1,10.0.0.1"));
    QCOMPARE(m_changes->size(), 4);
    QVERIFY(m_dialog->isVisible()); // Return closes nothing.
    QTest::keyClick(m_dialog, Qt::Key_R, Qt::AltModifier);
    QTRY_COMPARE(stored(), QStringLiteral("1 8080 65535 127.0.0.1,::1,::ffff:127.0.0.1"));
    QVERIFY(!find<QPushButton>("reset")->isEnabled());
    QTest::keyClick(m_dialog, Qt::Key_L, Qt::AltModifier);
    QTRY_VERIFY(stored().startsWith(QStringLiteral("0 ")));
}

void SettingsDialogTest::storesAPortOnceItRests()
{
    auto* port = find<QSpinBox>("httpPort");
    port->setFocus();
    for (int step = 0; step < 5; ++step) {
        QTest::keyClick(port, Qt::Key_Up);
    }
    QCOMPARE(m_changes->size(), 0);
    QTRY_COMPARE(m_changes->size(), 1);
    QVERIFY(stored().startsWith(QStringLiteral("0 3495 3489 ")));
}

void SettingsDialogTest::refusesEqualPorts()
{
    const auto* problem = find<QLabel>("portProblemText");
    typeInto("httpPort", "3489");
    QVERIFY(!problem->text().isEmpty());
    QVERIFY(stored().startsWith(QStringLiteral("0 3490 3489 ")));
    QCOMPARE(m_changes->size(), 0);
    typeInto("websocketPort", "3490"); // The two in each other's place.
    QVERIFY(problem->text().isEmpty());
    QVERIFY(stored().startsWith(QStringLiteral("0 3489 3490 ")));
}

void SettingsDialogTest::storesWhatWasTypedWhenItCloses()
{
    find<QSpinBox>("httpPort")->setFocus();
    QTest::keyClick(find<QSpinBox>("httpPort"), Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(find<QSpinBox>("httpPort"), QStringLiteral("4000"));
    QVERIFY(stored().startsWith(QStringLiteral("0 3490 ")));
    QTest::keyClick(m_dialog, Qt::Key_Escape);
    QVERIFY(stored().startsWith(QStringLiteral("0 4000 ")));
    QCOMPARE(m_changes->size(), 1);
    QTRY_VERIFY(!m_dialog);
    open();
    QCOMPARE(find<QSpinBox>("httpPort")->value(), 4000);
    find<QSpinBox>("httpPort")->setFocus();
    QTest::keyClick(find<QSpinBox>("httpPort"), Qt::Key_Up);
    m_dialog->close();
    QVERIFY(stored().startsWith(QStringLiteral("0 4001 ")));
    QTRY_VERIFY(!m_dialog);
    open();
    typeInto("addresses", "::1", Qt::Key_Left);
    delete m_dialog; // As where the program ends.
    QCOMPARE(stored(), QStringLiteral("0 4001 3489 ::1"));
    QCOMPARE(m_changes->size(), 1);
}

/// A port that the system chooses, and a list that was written by hand.
void SettingsDialogTest::leavesAloneWhatNobodyTouched()
{
    m_dialog->close();
    QTRY_VERIFY(!m_dialog);
    Settings::instance().setValue(SettingsKeys::ClientApiHttpPort, 0);
    Settings::instance().setValue(SettingsKeys::ClientApiHttpAllowedIps,
                                  QStringLiteral("::1, ::2"));
    open();
    for (int field = 0; field < 8; ++field) {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    }
    m_dialog->close();
    QCOMPARE(m_changes->size(), 0);
    QCOMPARE(stored(), QStringLiteral("0 0 3489 ::1, ::2"));
}

void SettingsDialogTest::tellsOfTheAddresses_data()
{
    QTest::addColumn<QString>("list");
    QTest::addColumn<QString>("entry"); // Null: no fault.
    QTest::addColumn<QString>("writtenAs");
    const QString none;
    const QString empty = QStringLiteral("");
    const auto row = [](const char* list, const QString& entry, const QString& writtenAs) {
        QTest::newRow(list) << QString::fromLatin1(list) << entry << writtenAs;
    };
    row("", none, none);
    row("127.0.0.1,::1,::ffff:127.0.0.1", none, none);
    row("192.168.0.17,fe80::1%eth0", none, none);
    row("::1,localhost", QStringLiteral("localhost"), empty);
    row("10.0.0.0/8", QStringLiteral("10.0.0.0/8"), empty);
    row(",", empty, empty);
    row("::1,", empty, empty);
    row("::1, ::2", QStringLiteral(" ::2"), QStringLiteral("::2"));
    row("FE80::1", QStringLiteral("FE80::1"), QStringLiteral("fe80::1"));
    row("0:0:0:0:0:0:0:1", QStringLiteral("0:0:0:0:0:0:0:1"), QStringLiteral("::1"));
}

void SettingsDialogTest::tellsOfTheAddresses()
{
    QFETCH(QString, list);
    QFETCH(QString, entry);
    QFETCH(QString, writtenAs);
    const auto fault = AddressList::firstFault(list);
    QCOMPARE(fault.has_value(), !entry.isNull());
    if (fault) {
        QCOMPARE(fault->entry, entry);
        QCOMPARE(fault->writtenAs, writtenAs);
    }
}

void SettingsDialogTest::warnsWhileTheListIsEmpty()
{
    const auto* remark = find<QLabel>("addressRemarkText");
    const QString hint = remark->text();
    const QSize size = m_dialog->size();
    typeInto("addresses", "here", Qt::Key_Left);
    QCOMPARE(remark->text(), hint); // Not before it is complete.
    QTest::keyClick(find<QLineEdit>("addresses"), Qt::Key_Return);
    QVERIFY(remark->text().contains(QStringLiteral("“here”")));
    typeInto("addresses", "", Qt::Key_Left);
    QVERIFY(remark->text().contains(QStringLiteral("every address is allowed")));
    QTest::qWait(1);
    QCOMPARE(m_dialog->size(), size); // Though it takes more lines.
    QVERIFY(stored().endsWith(QStringLiteral(" here")));
    QTest::keyClick(find<QLineEdit>("addresses"), Qt::Key_Return);
    QCOMPARE(stored(), QStringLiteral("0 3490 3489 "));
    QTest::keyClicks(find<QLineEdit>("addresses"), QStringLiteral("::1"));
    QCOMPARE(remark->text(), hint);
}

void SettingsDialogTest::tellsWhatIsSo_data()
{
    QTest::addColumn<int>("port");
    QTest::addColumn<int>("refused");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("action"); // Empty: there is none.
    QTest::newRow("off") << 0 << 0 << QStringLiteral("Off.") << QString();
    QTest::newRow("on") << 8080 << 0
                        << QStringLiteral("Listening on http://localhost:8080\nand "
                                          "ws://localhost:3489.")
                        << QStringLiteral("&Open the API's page");
    QTest::newRow("refused") << 0 << 80
                             << QStringLiteral("Off: port 80 is in use by another program or may "
                                               "not be used. Choose another.")
                             << QStringLiteral("&Try again");
}

void SettingsDialogTest::tellsWhatIsSo()
{
    QFETCH(int, port);
    QFETCH(int, refused);
    QFETCH(QString, action);
    const QSize before = m_dialog->size();
    const QSignalSpy links(m_dialog, &SettingsDialog::linkRequested);
    m_dialog->setClientApiState(
        {.httpPort = port,
         .websocketPort = port == 0 ? 0 : 3489,
         .refusedPort = refused == 0 ? std::nullopt : std::optional(refused)});
    QTEST(find<QLabel>("statusText")->text(), "text");
    auto* button = find<QPushButton>("act");
    QCOMPARE(button->isVisible(), !action.isEmpty());
    if (!action.isEmpty()) {
        QCOMPARE(button->text(), action);
        button->click();
    }
    QCOMPARE(m_changes->size(), refused == 0 ? 0 : 1);
    QCOMPARE(links.size(), port == 0 ? 0 : 1);
    if (port != 0) {
        QCOMPARE(links.at(0).at(0).toUrl(), QUrl(QStringLiteral("http://localhost:8080/")));
    }
    QTest::qWait(1);
    QCOMPARE(m_dialog->size(), before);
}

void SettingsDialogTest::followsChangesFromElsewhere()
{
    typeInto("httpPort", "3489"); // Refused, and left as it is while nothing else changes.
    m_dialog->setClientApiState({});
    QCOMPARE(find<QSpinBox>("httpPort")->value(), 3489);
    Settings::instance().setValue(SettingsKeys::ClientApiHttpEnable, true);
    Settings::instance().setValue(SettingsKeys::ClientApiWebsocketPort, 5000);
    m_dialog->setClientApiState({.httpPort = 3490, .websocketPort = 5000});
    QVERIFY(find<QCheckBox>("enabled")->isChecked());
    QCOMPARE(find<QSpinBox>("httpPort")->value(), 3490);
    QCOMPARE(find<QSpinBox>("websocketPort")->value(), 5000);
    QVERIFY(find<QLabel>("portProblemText")->text().isEmpty());
    QCOMPARE(m_changes->size(), 0);
}

REGISTER_TEST(SettingsDialogTest);
#include "SettingsDialogTest.moc"
