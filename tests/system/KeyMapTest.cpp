// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/TestRegistry.h"
#include "system/KeyMap.h"

#include <QMap>
#include <QTest>

#include <limits>

class KeyMapTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyCode();
};

namespace {

// The numbers as they stand in databases, and not the constants that the map is written with.
const QMap<int, int> Expected{
    {1, 0x01000000},   {2, 0x31},         {3, 0x32},         {4, 0x33},         {5, 0x34},
    {6, 0x35},         {7, 0x36},         {8, 0x37},         {9, 0x38},         {10, 0x39},
    {11, 0x30},        {12, 0x2d},        {13, 0x3d},        {14, 0x01000003},  {15, 0x01000001},
    {16, 0x51},        {17, 0x57},        {18, 0x45},        {19, 0x52},        {20, 0x54},
    {21, 0x59},        {22, 0x55},        {23, 0x49},        {24, 0x4f},        {25, 0x50},
    {26, 0x5b},        {27, 0x5d},        {28, 0x01000005},  {29, 0x01000021},  {97, 0x01000021},
    {30, 0x41},        {31, 0x53},        {32, 0x44},        {33, 0x46},        {34, 0x47},
    {35, 0x48},        {36, 0x4a},        {37, 0x4b},        {38, 0x4c},        {39, 0x3b},
    {40, 0x27},        {42, 0x01000020},  {54, 0x01000020},  {43, 0x5c},        {44, 0x5a},
    {45, 0x58},        {46, 0x43},        {47, 0x56},        {48, 0x42},        {49, 0x4e},
    {50, 0x4d},        {51, 0x2c},        {52, 0x2e},        {53, 0x2f},        {56, 0x01000023},
    {57, 0x20},        {58, 0x01000024},  {70, 0x01000026},  {59, 0x01000030},  {60, 0x01000031},
    {61, 0x01000032},  {62, 0x01000033},  {63, 0x01000034},  {64, 0x01000035},  {65, 0x01000036},
    {66, 0x01000037},  {67, 0x01000038},  {68, 0x01000039},  {87, 0x0100003a},  {88, 0x0100003b},
    {183, 0x0100003c}, {184, 0x0100003d}, {185, 0x0100003e}, {186, 0x0100003f}, {187, 0x01000040},
    {188, 0x01000041}, {189, 0x01000042}, {190, 0x01000043}, {191, 0x01000044}, {192, 0x01000045},
    {193, 0x01000046}, {194, 0x01000047}, {102, 0x01000010}, {107, 0x01000011}, {104, 0x01000016},
    {109, 0x01000017}, {105, 0x01000012}, {103, 0x01000013}, {106, 0x01000014}, {108, 0x01000015},
    {110, 0x01000006}, {111, 0x01000007}, {119, 0x01000008}, {113, 0x01000071}, {114, 0x01000070},
    {115, 0x01000072}, {100, 0x01001256}, {82, 0x01001258},  {79, 0x01001260},  {80, 0x01001255},
    {81, 0x01001252},  {75, 0x01001257},  {76, 0x01001254},  {77, 0x0100125f},  {71, 0x0100125e},
    {72, 0x01001259},  {73, 0xa8},        {74, 0xca},        {78, 0x010000d4},  {55, 0x010000d5},
    {98, 0x01000102},  {83, 0x010000ff},  {69, 0x01000104},
};

} // namespace

void KeyMapTest::everyCode()
{
    constexpr int unknown = 0x01ffffff;
    for (int code = 0; code <= std::numeric_limits<quint16>::max(); ++code) {
        const int key = KeyMap::translate(static_cast<quint16>(code));
        QVERIFY2(key == Expected.value(code, unknown), qPrintable(QString::number(code)));
    }
}

REGISTER_TEST(KeyMapTest);
#include "KeyMapTest.moc"
