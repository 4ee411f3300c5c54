// SPDX-License-Identifier: GPL-3.0-or-later
#include "clientapi/ClientApiFormat.h"
#include "support/TestRegistry.h"

#include <QTest>

#include <cmath>
#include <limits>
#include <vector>

using namespace ClientApiFormat;

namespace {

constexpr quint64 KiB = 1'024;
constexpr quint64 MiB = KiB * KiB;
constexpr quint64 GiB = KiB * MiB;
constexpr quint64 EiB = GiB * GiB;
constexpr quint64 LargestSigned = std::numeric_limits<qint64>::max();
constexpr quint64 Largest = std::numeric_limits<quint64>::max();
constexpr double Infinity = std::numeric_limits<double>::infinity();

template <typename Number>
struct Row
{
    Number value;
    const char* text;
};

/// One line for each row that reads otherwise.
template <typename Number>
void compare(QString (*format)(Number), const std::vector<Row<Number>>& rows)
{
    QStringList wrong;
    for (const auto& [value, text] : rows) {
        if (const QString found = format(value); found != QLatin1String(text)) {
            wrong << QStringLiteral("%1: %2").arg(QLatin1String(text), found);
        }
    }
    QCOMPARE(wrong.join(QLatin1Char('\n')), QString());
}

} // namespace

class ClientApiFormatTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void groupsCounts();
    void scalesBytes();
    void writesRates();
    void scalesByteRates();
    void splitsDurations();
    void writesMiles();
    void writesInchesAsMiles();
    void writesRanks();
};

void ClientApiFormatTest::groupsCounts()
{
    compare<quint64>(&count, {{0, "0"},
                              {1, "1"},
                              {999, "999"},
                              {1'000, "1,000"},
                              {1'234, "1,234"},
                              {999'999, "999,999"},
                              {1'000'000, "1,000,000"},
                              {LargestSigned, "9,223,372,036,854,775,807"},
                              {LargestSigned + 1, "9,223,372,036,854,775,808"},
                              {Largest, "18,446,744,073,709,551,615"}});
}

void ClientApiFormatTest::scalesBytes()
{
    compare<quint64>(&bytes, {{0, "0,00B"},
                              {1, "1,00B"},
                              {999, "999,00B"},
                              {1'000, "1000,00B"},
                              {KiB - 1, "1023,00B"},
                              {KiB, "1,00KB"},
                              {KiB + 5, "1,00KB"},
                              {KiB + 6, "1,01KB"},
                              {489 * MiB, "489,00MB"},
                              {MiB - 6, "1023,99KB"},
                              {MiB - 5, "1,00MB"},
                              {MiB - 1, "1,00MB"},
                              {MiB, "1,00MB"},
                              {GiB - 1, "1,00GB"},
                              {GiB, "1,00GB"},
                              {1'536 * GiB, "1,50TB"},
                              {KiB * KiB * GiB, "1,00PB"},
                              {EiB - 1, "1,00EB"},
                              {EiB, "1,00EB"},
                              {LargestSigned, "8,00EB"},
                              {Largest, "16,00EB"}});
}

void ClientApiFormatTest::writesRates()
{
    compare<double>(&rate, {{0, "0,00"},
                            {-0.0, "0,00"},
                            {-1, "0,00"},
                            {std::nan(""), "0,00"},
                            {-Infinity, "0,00"},
                            {0.004, "0,00"},
                            {0.006, "0,01"},
                            {0.2, "0,20"},
                            {8.12, "8,12"},
                            {18, "18,00"},
                            {999.996, "1000,00"},
                            {1'234.5, "1234,50"},
                            {Infinity, "18446744073709551616,00"}});
}

void ClientApiFormatTest::scalesByteRates()
{
    compare<double>(&byteRate, {{0, "0,00B/s"},
                                {-5, "0,00B/s"},
                                {std::nan(""), "0,00B/s"},
                                {0.2, "0,20B/s"},
                                {1'023.99, "1023,99B/s"},
                                {1'023.996, "1,00KB/s"},
                                {317.49 * 1'024, "317,49KB/s"},
                                {1.27 * 1'048'576, "1,27MB/s"},
                                {1e300, "16,00EB/s"},
                                {Infinity, "16,00EB/s"}});
}

void ClientApiFormatTest::splitsDurations()
{
    compare<quint64>(&duration, {{0, "0s"},
                                 {36, "36s"},
                                 {59, "59s"},
                                 {60, "1m, 0s"},
                                 {3'599, "59m, 59s"},
                                 {3'600, "1h, 0m, 0s"},
                                 {3'605, "1h, 0m, 5s"},
                                 {86'399, "23h, 59m, 59s"},
                                 {86'400, "1d, 0h, 0m, 0s"},
                                 {123'456, "1d, 10h, 17m, 36s"},
                                 {86'400'000, "1000d, 0h, 0m, 0s"},
                                 {LargestSigned, "106751991167300d, 15h, 30m, 7s"}});
}

void ClientApiFormatTest::writesMiles()
{
    compare<quint64>(&miles, {{0, "0m"}, {116, "116m"}, {1'000, "1,000m"}});
}

void ClientApiFormatTest::writesInchesAsMiles()
{
    compare<quint64>(&inchesAsMiles, {{0, "0,00m"},
                                      {316, "0,00m"},
                                      {317, "0,01m"},
                                      {5'069, "0,08m"},
                                      {63'360, "1,00m"},
                                      {6'335'683, "99,99m"},
                                      {6'335'684, "100m"},
                                      {100 * 63'360 + 31'679, "100m"},
                                      {100 * 63'360 + 31'680, "101m"},
                                      {LargestSigned, "145,570,897,046,319m"}});
}

void ClientApiFormatTest::writesRanks()
{
    compare<quint64>(&ordinal, {{0, "0th"},
                                {1, "1st"},
                                {2, "2nd"},
                                {3, "3rd"},
                                {4, "4th"},
                                {10, "10th"},
                                {11, "11th"},
                                {12, "12th"},
                                {13, "13th"},
                                {21, "21st"},
                                {101, "101st"},
                                {111, "111th"},
                                {112, "112th"},
                                {123, "123rd"},
                                {1'013, "1,013th"},
                                {1'022, "1,022nd"},
                                {1'234, "1,234th"},
                                {LargestSigned, "9,223,372,036,854,775,807th"}});
}

REGISTER_TEST(ClientApiFormatTest);
#include "ClientApiFormatTest.moc"
