// SPDX-License-Identifier: GPL-3.0-or-later
#include "account/WindowMessages.h"

#include "account/AnswerFields.h"
#include "account/HttpUrl.h"
#include "base/Format.h"
#include "base/Log.h"
#include "storage/DSqlQuery.h"
#include "storage/Database.h"
#include "storage/Settings.h"
#include "storage/SettingsKeys.h"

#include <QRandomGenerator>

#include <algorithm>
#include <utility>

namespace {

/// The service never uses a number again, so none may be forgotten while its message may still be
/// listed; so many nobody has.
constexpr qsizetype MostDismissed = 1'000;

QList<qint64> dismissedIds()
{
    QList<qint64> ids;
    const QString stored = Settings::instance().value(SettingsKeys::DismissedWebsiteMessages);
    for (const QString& text : stored.split(QLatin1Char(','), Qt::SkipEmptyParts)) {
        bool ok = false;
        const qint64 id = text.toLongLong(&ok);
        if (ok) {
            ids << id;
        }
    }
    return ids;
}

void storeDismissedIds(const QList<qint64>& ids)
{
    QStringList texts;
    for (const qint64 id : ids) {
        texts << QString::number(id);
    }
    Settings::instance().setValue(SettingsKeys::DismissedWebsiteMessages,
                                  texts.join(QLatin1Char(',')));
}

/// Null while nothing can be written. What is not stored then comes again with the service's next
/// list, and what is not deleted is known to be dismissed.
Database* writableDatabase()
{
    Database* database = Database::instance();
    const bool writable =
        database != nullptr && database->state() == Database::State::Open && !database->isLent();
    return writable ? database : nullptr;
}

/// The columns take no NULL, as which a null text would be bound.
QString storable(const QString& text)
{
    return text.isNull() ? QStringLiteral("") : text;
}

void store(const WindowMessage& message)
{
    if (Database* database = writableDatabase()) {
        DSqlQuery replace(
            database,
            QStringLiteral(R"(REPLACE INTO website_pending_messages ("id", "created_at", "link", )"
                           R"("type", "text", "button_text") VALUES (?, ?, ?, ?, ?, ?))"),
            false);
        replace.addBindValue(message.id);
        replace.addBindValue(Format::isoDateTime(message.createdAt));
        replace.addBindValue(storable(message.link.toString(QUrl::FullyEncoded)));
        replace.addBindValue(storable(message.type));
        replace.addBindValue(message.text);
        replace.addBindValue(storable(message.buttonText));
        replace.exec();
    }
}

void erase(qint64 id)
{
    if (Database* database = writableDatabase()) {
        DSqlQuery remove(database,
                         QStringLiteral(R"(DELETE FROM website_pending_messages WHERE "id"=?)"),
                         false);
        remove.addBindValue(id);
        remove.exec();
    }
}

} // namespace

std::optional<WindowMessage> parseWebsiteMessage(const QVariant& entry)
{
    const AnswerFields::Map fields = AnswerFields::object(entry);
    const auto text = [&fields](const QString& name) {
        return AnswerFields::text(fields.value(name)).trimmed();
    };
    const std::optional<qint64> id = AnswerFields::wholeNumber(fields.value(QStringLiteral("id")));
    WindowMessage message;
    message.text = text(QStringLiteral("text"));
    if (!id || *id <= 0 || message.text.isEmpty()) {
        return std::nullopt;
    }
    message.id = *id;
    message.type = text(QStringLiteral("type"));
    message.link = httpUrl(text(QStringLiteral("link")));
    message.buttonText = message.link.isEmpty() ? QString() : text(QStringLiteral("button_text"));
    message.createdAt = AnswerFields::localTime(fields.value(QStringLiteral("created_at")));
    return message;
}

WindowMessage archivedComputerMessage(const QUrl& website)
{
    // Numbers in this range are the client's own.
    constexpr int lowestId = 10'000;
    constexpr int highestId = 99'999;
    return {.id = QRandomGenerator::global()->bounded(lowestId, highestId + 1),
            .type = QStringLiteral("archived_computer"),
            .title = WindowMessages::tr("Computer Management"),
            .text = WindowMessages::tr("This computer is archived, and isn't able to connect to "
                                       "your account."),
            .buttonText = WindowMessages::tr("Computer Management"),
            .link = QUrl(website.toString(QUrl::FullyEncoded) +
                         QStringLiteral("/dashboard/my/computers")),
            .createdAt = QDateTime::currentDateTime()};
}

WindowMessages::WindowMessages(QObject* parent)
    : QObject(parent)
{
}

void WindowMessages::load()
{
    m_dismissed = dismissedIds();
    DSqlQuery rows(Database::instance(),
                   QStringLiteral(R"(SELECT "id", "created_at", "link", "type", "text", )"
                                  R"("button_text" FROM website_pending_messages)"),
                   true);
    while (rows.next()) {
        enum Column
        {
            Id,
            CreatedAt,
            Link,
            Type,
            Text,
            ButtonText
        };

        put({.id = rows.value(Id).toLongLong(),
             .type = rows.value(Type).toString(),
             .title = {},
             .text = rows.value(Text).toString(),
             .buttonText = rows.value(ButtonText).toString(),
             .link = httpUrl(rows.value(Link).toString()),
             .createdAt = SettingValue::toDateTime(rows.value(CreatedAt)).value_or(QDateTime())});
    }
    sort();
    Q_EMIT changed();
}

void WindowMessages::addUniqueOnTypeWindowMessage(const WindowMessage& message)
{
    const auto sameType = [&message](const WindowMessage& other) {
        return other.type == message.type;
    };
    if (std::ranges::none_of(m_messages, sameType)) {
        m_messages << message;
        m_own << message.id;
        sort();
        Q_EMIT changed();
    }
}

void WindowMessages::takeWebsiteMessages(const QVariantList& messages)
{
    bool anyChanged = false;
    for (const QVariant& entry : messages) {
        const std::optional<WindowMessage> message = parseWebsiteMessage(entry);
        if (!message) {
            Log::warn("The website sent a message without a text or a number");
        } else if (put(*message)) {
            store(*std::ranges::find(m_messages, message->id, &WindowMessage::id));
            anyChanged = true;
        }
    }
    if (anyChanged) {
        sort();
        Q_EMIT changed();
    }
}

void WindowMessages::dismiss(qint64 id)
{
    const auto removed =
        m_messages.removeIf([id](const WindowMessage& message) { return message.id == id; });
    if (removed == 0) {
        return;
    }
    if (!m_own.remove(id)) {
        erase(id);
        m_dismissed << id;
        m_dismissed = m_dismissed.last(std::min(m_dismissed.size(), MostDismissed));
        storeDismissedIds(m_dismissed);
    }
    Q_EMIT changed();
}

/// Adds a message of the service, or brings the one with its number up to date. False where that
/// changes nothing.
bool WindowMessages::put(WindowMessage message)
{
    if (m_dismissed.contains(message.id)) {
        return false;
    }
    const auto known = std::ranges::find(m_messages, message.id, &WindowMessage::id);
    const bool isKnown = known != m_messages.end();
    if (!message.createdAt.isValid()) {
        message.createdAt = isKnown ? known->createdAt : QDateTime::currentDateTime();
    }
    if (!isKnown) {
        m_messages << message;
        return true;
    }
    return std::exchange(*known, message) != message;
}

void WindowMessages::sort()
{
    std::ranges::stable_sort(m_messages, {}, &WindowMessage::createdAt);
}
