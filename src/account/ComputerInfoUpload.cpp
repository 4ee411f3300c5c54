// SPDX-License-Identifier: GPL-3.0-or-later
#include "account/ComputerInfoUpload.h"

#include "account/ClientCommunication.h"
#include "account/JsonWriter.h"
#include "account/RequestTypes.h"
#include "base/Log.h"
#include "storage/DSqlQuery.h"
#include "storage/Database.h"
#include "storage/Settings.h"

#include <QDateTime>
#include <QSqlError>

namespace {

constexpr int MostInterfaces = 200;
constexpr qint64 NotAnswered = 0; ///< As the time of the last check.

const QString NetworkInfo = QStringLiteral("NetworkInfo");
const QString LastUpdate = QStringLiteral("last_update");

QString jsonText(const QVariantList& list)
{
    JsonWriter writer;
    if (!writer.stringify(list)) {
        Log::error("Unable to write computer information: {}", writer.errorString());
    }
    return writer.result();
}

/// Not null, which the table refuses.
QString notNull(const QString& text)
{
    return text.isNull() ? QStringLiteral("") : text;
}

/// Everything as text: a list goes as JSON, under a name that says so.
QMap<QString, QString> asTexts(const QVariantMap& facts)
{
    QMap<QString, QString> texts;
    for (auto fact = facts.cbegin(); fact != facts.cend(); ++fact) {
        if (fact->typeId() == QMetaType::QVariantList) {
            texts.insert(fact.key() + QStringLiteral("_JSON"), jsonText(fact->toList()));
        } else {
            texts.insert(fact.key(), notNull(fact->toString()));
        }
    }
    return texts;
}

QVariantList withoutTimes(const QVariantList& interfaces)
{
    QVariantList list;
    for (const QVariant& interface : interfaces) {
        QVariantMap fields = interface.toMap();
        fields.remove(LastUpdate);
        list.append(fields);
    }
    return list;
}

bool isDue()
{
    const qint64 last = Settings::instance().value(SettingsKeys::CheckForCompInfoLast);
    const qint64 now = QDateTime::currentSecsSinceEpoch();
    return last > now || now - last >= ComputerInfoUpload::CheckEvery.count();
}

bool wasAnswered()
{
    return Settings::instance().value(SettingsKeys::CheckForCompInfoLast) != NotAnswered;
}

void setLastCheck(qint64 seconds)
{
    Settings::instance().setValue(SettingsKeys::CheckForCompInfoLast, seconds);
}

} // namespace

ComputerInfoUpload::ComputerInfoUpload(const UploadPartners& partners, ComputerFactsSource facts)
    : Upload(partners)
    , m_facts(std::move(facts))
{
}

QStringList ComputerInfoUpload::requestTypes() const
{
    return {RequestTypes::ComputerInfo};
}

void ComputerInfoUpload::uploadComputerInfo(When when)
{
    if (!isAllowed() || isWaiting(RequestTypes::ComputerInfo) ||
        (when == When::IfDue && !isDue())) {
        return;
    }
    const QVariantList interfaces = readInterfaces();
    QVariantMap facts = m_facts();
    // When an interface was last seen changes by the minute, and is no difference.
    facts.insert(NetworkInfo, withoutTimes(interfaces));
    const bool differs = storeIfDifferent(asTexts(facts));
    if (differs || when == When::Now || !wasAnswered()) {
        facts.insert(NetworkInfo, interfaces);
        sendInfo(asTexts(facts));
    } else {
        setLastCheck(QDateTime::currentSecsSinceEpoch());
    }
}

bool ComputerInfoUpload::storeIfDifferent(const Texts& info) const
{
    if (info == readCopy()) {
        return false;
    }
    Log::info("Found difference in computer information, storing updated info!");
    storeCopy(info);
    return true;
}

void ComputerInfoUpload::sendInfo(const Texts& info)
{
    ClientCommunication::Map texts;
    for (auto text = info.cbegin(); text != info.cend(); ++text) {
        texts.insert(text.key(), text.value());
    }
    setLastCheck(NotAnswered); // That the copy is stored does not mean that the service has it.
    send(RequestTypes::ComputerInfo, [&] { return communication().uploadComputerInfo(texts); });
}

QVariantList ComputerInfoUpload::readInterfaces() const
{
    DSqlQuery query(&database());
    // The table's times are in UTC.
    query.prepare(QStringLiteral(
        "SELECT description, wifi, mac_address, ip_list, datetime(last_update, 'localtime') FROM "
        "network_interfaces WHERE last_update >= datetime('now', '-30 days') ORDER BY mac_address "
        "LIMIT ?"));
    query.bindValue(0, MostInterfaces);
    query.exec();
    QVariantList interfaces;
    while (query.next()) {
        interfaces.append(QVariantMap{
            {QStringLiteral("description"), query.value(0).toString()},
            {QStringLiteral("is_wifi"), query.value(1).toBool()},
            {QStringLiteral("mac_address"), query.value(2).toString()},
            {QStringLiteral("ip_list"), query.value(3).toString()},
            {LastUpdate, query.value(4).toString()},
        });
    }
    return interfaces;
}

ComputerInfoUpload::Texts ComputerInfoUpload::readCopy() const
{
    DSqlQuery query(&database(), QStringLiteral("SELECT name, value FROM computer_info"), true);
    Texts copy;
    while (query.next()) {
        copy.insert(query.value(0).toString(), query.value(1).toString());
    }
    return copy;
}

void ComputerInfoUpload::storeCopy(const Texts& info) const
{
    QSqlDatabase connection = database().connection();
    const bool began = connection.transaction();
    DSqlQuery query(&database());
    query.exec(QStringLiteral("DELETE FROM computer_info"));
    query.prepare(QStringLiteral(R"(REPLACE INTO computer_info ("name", "value") VALUES(?, ?))"));
    for (auto text = info.cbegin(); text != info.cend(); ++text) {
        query.bindValue(0, text.key());
        query.bindValue(1, text.value());
        query.exec();
    }
    if (began && !connection.commit()) {
        Log::error("Unable to store computer information: {}", connection.lastError().text());
        connection.rollback();
    }
}

void ComputerInfoUpload::answered(const UploadAnswer& answer)
{
    if (answer.isSuccess()) {
        Log::info("Successfully updated online computer info.");
        setLastCheck(QDateTime::currentSecsSinceEpoch());
    } else {
        Log::error("Error updating online computer info: {}", answer.message);
    }
}
