// SPDX-License-Identifier: GPL-3.0-or-later
#include "ScriptedService.h"
#include "account/ClientCommunication.h"
#include "account/WebsiteMessageCheck.h"
#include "account/WindowMessages.h"
#include "storage/SettingsKeys.h"
#include "support/LogCapture.h"
#include "support/TestDatabase.h"
#include "support/TestRegistry.h"
#include "support/Waiting.h"

#include <QSignalSpy>

namespace {

QVariantMap entry(const QVariant& id, const QString& text)
{
    return {{QStringLiteral("id"), id},
            {QStringLiteral("text"), text},
            {QStringLiteral("type"), QStringLiteral("news")},
            {QStringLiteral("button_text"), QStringLiteral("Read")},
            {QStringLiteral("link"), QStringLiteral("https://www.tallyvane.example/news")},
            {QStringLiteral("created_at"), QStringLiteral("2026-07-01 10:00:00")}};
}

/// The numbers of the messages, in their order.
QString ids(const WindowMessages& messages)
{
    QStringList result;
    for (const WindowMessage& message : messages.messages()) {
        result << QString::number(message.id);
    }
    return result.join(QLatin1Char(' '));
}

} // namespace

class WindowMessagesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void readsWhatTheServiceSays_data();
    void readsWhatTheServiceSays();
    void keepsMessagesUntilTheyAreDismissed();
    void tellsOfAnArchivedComputerOnce();
    void asksTheService();

private:
    std::unique_ptr<TestDatabase> m_database;
};

void WindowMessagesTest::init()
{
    m_database = std::make_unique<TestDatabase>();
}

void WindowMessagesTest::cleanup()
{
    m_database.reset();
}

void WindowMessagesTest::readsWhatTheServiceSays_data()
{
    QTest::addColumn<QString>("field");
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QString>("read"); // "" where the message is left out.
    const QString time = QDateTime(QDate(2026, 7, 1), QTime(10, 0), Qt::UTC)
                             .toLocalTime()
                             .toString(QStringLiteral("yyyy-MM-dd HH:mm:ss"));
    const QString whole =
        QStringLiteral("3|news|Hello|Read|https://www.tallyvane.example/news|") + time;
    const auto with = [&whole](const QString& before, const char* after) {
        return QString(whole).replace(before, QLatin1String(after));
    };
    const QString button = QStringLiteral("Read|https://www.tallyvane.example/news");
    QTest::newRow("whole") << "" << QVariant() << whole;
    QTest::newRow("number as text") << "id" << QVariant(QStringLiteral("3")) << whole;
    QTest::newRow("number missing") << "id" << QVariant() << "";
    QTest::newRow("number negative") << "id" << QVariant(-3) << "";
    QTest::newRow("number a fraction") << "id" << QVariant(3.0) << "";
    QTest::newRow("number true") << "id" << QVariant(true) << "";
    QTest::newRow("text missing") << "text" << QVariant() << "";
    QTest::newRow("text blank") << "text" << QVariant(QStringLiteral(" \n")) << "";
    QTest::newRow("text a list") << "text" << QVariant(QVariantList{1}) << "";
    QTest::newRow("no link") << "link" << QVariant(QString()) << with(button, "|");
    QTest::newRow("link to a script")
        << "link" << QVariant(QStringLiteral("javascript:alert(1)")) << with(button, "|");
    QTest::newRow("link to a file")
        << "link" << QVariant(QStringLiteral("file:///etc/passwd")) << with(button, "|");
    QTest::newRow("day that is none")
        << "created_at" << QVariant(QStringLiteral("2026-02-30 10:00:00")) << with(time, "");
}

void WindowMessagesTest::readsWhatTheServiceSays()
{
    QFETCH(QString, field);
    QFETCH(QVariant, value);
    QVariantMap fields = entry(3, QStringLiteral("Hello"));
    if (!field.isEmpty()) {
        fields.insert(field, value);
    }
    const std::optional<WindowMessage> message = parseWebsiteMessage(fields);
    const QString read =
        message ? QStringList{QString::number(message->id),
                              message->type,
                              message->text,
                              message->buttonText,
                              message->link.toString(),
                              message->createdAt.toString(QStringLiteral("yyyy-MM-dd HH:mm:ss"))}
                      .join(QLatin1Char('|'))
                : QString();
    QTEST(read, "read");
}

void WindowMessagesTest::keepsMessagesUntilTheyAreDismissed()
{
    const LogCapture log;
    QVariantMap older = entry(5, QStringLiteral("older"));
    older[QStringLiteral("created_at")] = QStringLiteral("2026-06-01 10:00:00");
    const QVariantList list{entry(4, QStringLiteral("newer")), older, QStringLiteral("no object")};
    {
        WindowMessages messages;
        const QSignalSpy changes(&messages, &WindowMessages::changed);
        messages.load();
        messages.takeWebsiteMessages(list);
        messages.takeWebsiteMessages(list);
        QCOMPARE(changes.size(), 2);
        QCOMPARE(ids(messages), QStringLiteral("5 4"));
        QCOMPARE(log.count(QStringLiteral("without a text or a number")), 2);
    }
    m_database->reopen();
    {
        WindowMessages messages;
        messages.load();
        QCOMPARE(ids(messages), QStringLiteral("5 4"));
        QCOMPARE(messages.messages().last(),
                 *parseWebsiteMessage(entry(4, QStringLiteral("newer"))));
        messages.dismiss(5);
        messages.takeWebsiteMessages(list);
        QCOMPARE(ids(messages), QStringLiteral("4"));
    }
    QCOMPARE(m_database->rows(QStringLiteral("SELECT id FROM website_pending_messages")),
             QStringLiteral("4"));
    m_database->reopen();
    WindowMessages messages;
    messages.load();
    messages.takeWebsiteMessages(list);
    QCOMPARE(ids(messages), QStringLiteral("4"));
}

void WindowMessagesTest::tellsOfAnArchivedComputerOnce()
{
    const QUrl website(QStringLiteral("https://www.tallyvane.example"));
    WindowMessages messages;
    messages.load();
    messages.addUniqueOnTypeWindowMessage(archivedComputerMessage(website));
    messages.addUniqueOnTypeWindowMessage(archivedComputerMessage(website));
    QCOMPARE(messages.messages().size(), 1);
    const WindowMessage message = messages.messages().first();
    QVERIFY(message.id >= 10'000 && message.id <= 99'999);
    QCOMPARE(message.title, QStringLiteral("Computer Management"));
    QCOMPARE(message.text, QStringLiteral("This computer is archived, and isn't able to connect "
                                          "to your account."));
    messages.dismiss(message.id);
    QVERIFY(messages.messages().isEmpty());
    // Its number was the client's own, and is none of the service's.
    messages.takeWebsiteMessages({entry(message.id, QStringLiteral("another"))});
    QCOMPARE(messages.messages().size(), 1);
}

void WindowMessagesTest::asksTheService()
{
    const LogCapture log;
    Settings& settings = Settings::instance();
    ScriptedService service;
    ClientCommunication communication;
    communication.setClientURL(service.url());
    communication.setIdentity(Someone);
    WindowMessages messages;
    messages.load();
    WebsiteMessageCheck check(communication, messages);
    QSignalSpy done(&communication, &ClientCommunication::requestDone);
    const QDateTime before = settings.value(SettingsKeys::CheckedForMessagesLast);

    settings.setValue(SettingsKeys::WorkOffline, true);
    check.checkForMessagesFromWebsite();
    QCOMPARE(settings.value(SettingsKeys::CheckedForMessagesLast), before);

    settings.setValue(SettingsKeys::WorkOffline, false);
    service.expect({QStringLiteral("200"),
                    QStringLiteral(R"({"status":200,"data":{"messages":[{"id":8,"text":"Hi"}]}})"),
                    QStringLiteral("400")});
    check.checkForMessagesFromWebsite();
    check.checkForMessagesFromWebsite();
    QVERIFY(comesTrue([&] { return done.size() == 2; }));
    QCOMPARE(service.actions().join(QLatin1Char(' ')),
             QStringLiteral("client_login get_pending_messages get_pending_messages"));
    QCOMPARE(ids(messages), QStringLiteral("8"));
    QVERIFY(settings.value(SettingsKeys::CheckedForMessagesLast) > before);
    QVERIFY(log.contains(QStringLiteral("Error getting pending messages: Server is down")));
}

REGISTER_TEST(WindowMessagesTest);
#include "WindowMessagesTest.moc"
