// SPDX-License-Identifier: GPL-3.0-or-later
#include "UiDatabase.h"

#include "base/Format.h"

#include <QRandomGenerator>
#include <QTest>

#include <array>

namespace {

struct Share
{
    const char* path;
    int percent;
};

constexpr std::array<Share, 9> Applications{{{"/usr/bin/kate", 31},
                                             {"/usr/lib/firefox/firefox", 24},
                                             {"/usr/bin/konsole", 17},
                                             {"/usr/bin/thunderbird", 11},
                                             {"/opt/element/element-desktop", 7},
                                             {"/usr/lib/libreoffice/program/soffice.bin", 5},
                                             {"/usr/bin/keepassxc", 2},
                                             {"/usr/bin/gimp-2.10", 2},
                                             {"/usr/bin/dolphin", 1}}};

constexpr std::array<int, 24> KeysPerHour{0,    0,    0,    0,    0,    0,    0,    0,
                                          640,  2210, 3120, 2870, 480,  2040, 3390, 2980,
                                          2260, 710,  0,    0,    1240, 870,  310,  0};

/// Letters in about the frequencies of English text, and the keys around them.
const char* const Letters = "eeeeeeeeeeeetttttttttaaaaaaaaooooooooiiiiiiinnnnnnnsssssshhhhhhrrrrrr"
                            "ddddllllccuuummwwffggyyppbbvk";

} // namespace

void UiDatabase::insert(const QString& statement, const QVariantList& values) const
{
    DSqlQuery query(connection());
    QVERIFY(query.prepare(statement));
    for (const QVariant& value : values) {
        query.addBindValue(value);
    }
    QVERIFY(query.exec());
}

void UiDatabase::addHour(const QDate& day, int hour, qint64 keys, int profile)
{
    insert(QStringLiteral("REPLACE INTO keypresses (\"day\", \"hour\", \"count\", \"profile_id\") "
                          "VALUES (?, ?, ?, ?)"),
           {Format::isoDay(day), hour, keys, profile});
}

void UiDatabase::addKey(const QDate& day, int hour, int key, qint64 keys, int profile)
{
    insert(QStringLiteral("REPLACE INTO keypress_frequency (\"day\", \"hour\", \"key\", \"count\", "
                          "\"profile_id\") VALUES (?, ?, ?, ?, ?)"),
           {Format::isoDay(day), hour, key, keys, profile});
}

void UiDatabase::addApplication(const QDate& day, int hour, const QString& path, qint64 keys,
                                int profile)
{
    insert(QStringLiteral("REPLACE INTO input_per_application (\"day\", \"hour\", \"path\", "
                          "\"keys\", \"profile_id\") VALUES (?, ?, ?, ?, ?)"),
           {Format::isoDay(day), hour, path, keys, profile});
}

void UiDatabase::addBusyDay(const QDate& day)
{
    constexpr int evening = 18;
    constexpr int firstBatch = 7;
    const QByteArray letters(Letters);
    QRandomGenerator random(1);
    connection().transaction();
    for (int hour = 0; hour < static_cast<int>(KeysPerHour.size()); ++hour) {
        const int keys = KeysPerHour.at(static_cast<size_t>(hour));
        const int profile = hour < evening ? 1 : 0;
        if (keys == 0) {
            continue;
        }
        QHash<int, int> perKey;
        for (int i = 0; i < keys; ++i) {
            static constexpr std::array<int, 8> others{
                Qt::Key_Space,  Qt::Key_Space,   Qt::Key_Backspace, Qt::Key_Shift,
                Qt::Key_Return, Qt::Key_Control, Qt::Key_Down,      Qt::Key_Tab};
            const bool isLetter = random.bounded(10) < 7;
            const int key =
                isLetter ? letters.at(random.bounded(static_cast<int>(letters.size()))) - 'a' + 'A'
                         : others.at(static_cast<size_t>(random.bounded(8)));
            ++perKey[key];
        }
        for (auto it = perKey.cbegin(); it != perKey.cend(); ++it) {
            addKey(day, hour, it.key(), it.value(), profile);
        }
        for (const Share& share : Applications) {
            addApplication(day, hour, QString::fromLatin1(share.path), keys * share.percent / 100,
                           profile);
        }
        addHour(day, hour, keys - firstBatch, profile);
    }
    connection().commit();
}

void UiDatabase::addTraffic(const QDate& day)
{
    constexpr qint64 bytesPerKey = 20'000;
    constexpr int percent = 100;
    const auto add = [this, &day](const char* table, const QString& columns, int hour, qint64 bytes,
                                  const QVariantList& thing) {
        insert(
            QStringLiteral("INSERT INTO %1 (\"day\", \"hour\", \"download\", \"upload\", %2) "
                           "VALUES (?, ?, ?, ?%3)")
                .arg(QLatin1String(table), columns, QStringLiteral(", ?").repeated(thing.size())),
            QVariantList{Format::isoDay(day), hour, bytes, bytes / 10} + thing);
    };
    const QString mac = QStringLiteral("\"mac_address\"");
    const QString path = QStringLiteral("\"path\"");
    const QString country = QStringLiteral("\"country\"");
    const QString port = QStringLiteral("\"port_number\", \"protocol\"");
    const QString wired = QStringLiteral("02:4F:1C:A0:5E:11");
    const QString wireless = QStringLiteral("02:4F:1C:A0:5E:12");
    insert(QStringLiteral("REPLACE INTO network_interfaces VALUES (?, 'enp3s0', 0, '192.168.1.23', "
                          "'2026-03-10 08:00:00'), (?, 'wlp2s0', 1, '192.168.1.24', "
                          "'2026-03-09 08:00:00')"),
           {wired, wireless});
    for (int hour = 0; hour < static_cast<int>(KeysPerHour.size()); ++hour) {
        const qint64 bytes = KeysPerHour.at(static_cast<size_t>(hour)) * bytesPerKey;
        if (bytes == 0) {
            continue;
        }
        add("network_interface_bandwidth", mac, hour, bytes, {wired});
        add("network_interface_bandwidth", mac, hour, bytes / 3, {wireless});
        for (size_t i = 1; i < 4; ++i) {
            const Share& share = Applications.at(i);
            add("application_bandwidth", path, hour, bytes * share.percent / percent,
                {QString::fromLatin1(share.path)});
        }
        int part = 50;
        for (const char* code : {"US", "DE", "JP", "LAN", "??"}) {
            add("country_bandwidth", country, hour, bytes * part / percent,
                {QString::fromLatin1(code)});
            part /= 2;
        }
        add("network_protocol_bandwidth", port, hour, bytes, {443, QStringLiteral("TCP")});
        add("network_protocol_bandwidth", port, hour, bytes / 2, {443, QStringLiteral("UDP")});
        add("network_protocol_bandwidth", port, hour, bytes / 9, {22, QStringLiteral("TCP")});
        add("network_protocol_bandwidth", port, hour, bytes / 99, {53, QStringLiteral("UDP")});
    }
}
