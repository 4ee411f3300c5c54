// SPDX-License-Identifier: GPL-3.0-or-later
#include "system/InputDevicesText.h"

#include "system/TextLines.h"

#include <linux/input-event-codes.h>

#include <climits>
#include <utility>
#include <vector>

namespace {

/// One of the bitmaps of a block, such as "B: KEY=10000 0 0 0": words of the machine's own width in
/// hexadecimal, the highest first, leading zero words left out.
class Bitmap
{
public:
    void parse(QByteArrayView text)
    {
        m_words.clear();
        for (const QByteArray& word : text.trimmed().toByteArray().split(' ')) {
            bool ok = false;
            m_words.insert(m_words.begin(), word.toULongLong(&ok, 16));
            if (!ok || m_words.size() > MostWords) {
                m_words.clear();
                return;
            }
        }
    }

    bool has(unsigned bit) const
    {
        const size_t word = bit / WordBits;
        return word < m_words.size() && (m_words[word] >> (bit % WordBits) & 1U) != 0;
    }

private:
    static constexpr unsigned WordBits = sizeof(long) * CHAR_BIT;
    static constexpr size_t MostWords = (KEY_MAX + 1) / 32; ///< Of the narrower width.

    std::vector<quint64> m_words;
};

struct Capabilities
{
    Bitmap events;
    Bitmap keys;
    Bitmap relativeAxes;
    Bitmap absoluteAxes;
    Bitmap properties;
};

InputDeviceDescription::Kind kindOf(const Capabilities& has)
{
    using Kind = InputDeviceDescription::Kind;
    if (has.absoluteAxes.has(ABS_X) && has.absoluteAxes.has(ABS_Y) &&
        has.keys.has(BTN_TOOL_FINGER) && !has.keys.has(BTN_TOOL_PEN) &&
        !has.properties.has(INPUT_PROP_DIRECT)) {
        return Kind::Trackpad;
    }
    const bool moves = (has.relativeAxes.has(REL_X) && has.relativeAxes.has(REL_Y)) ||
                       (has.absoluteAxes.has(ABS_X) && has.absoluteAxes.has(ABS_Y));
    if (moves && has.keys.has(BTN_LEFT)) {
        return Kind::Mouse;
    }
    if (has.events.has(EV_KEY) && has.keys.has(KEY_Q) && has.keys.has(KEY_M) &&
        has.keys.has(KEY_SPACE)) {
        return Kind::Keyboard;
    }
    return Kind::Other;
}

/// The hexadecimal number after `key` in "Bus=0003 Vendor=046d Product=c077 Version=0111".
unsigned short idAfter(QByteArrayView line, QByteArrayView key)
{
    const qsizetype start = line.indexOf(key);
    if (start < 0) {
        return 0;
    }
    constexpr qsizetype digits = 4;
    const QByteArrayView rest = line.sliced(start + key.size());
    return rest.first(qMin(digits, rest.size())).toByteArray().toUShort(nullptr, 16);
}

QString quotedName(QByteArrayView line)
{
    const qsizetype start = line.indexOf('"');
    const qsizetype end = line.lastIndexOf('"');
    return end > start ? QString::fromUtf8(line.sliced(start + 1, end - start - 1)).simplified()
                       : QString();
}

/// Reads one line of a block, a letter for its kind, a colon and a space before the content.
void readLine(QByteArrayView line, InputDeviceDescription& device, Capabilities& has)
{
    struct Map
    {
        QByteArrayView key;
        Bitmap& bitmap;
    };

    const Map maps[] = {{"B: EV=", has.events},
                        {"B: KEY=", has.keys},
                        {"B: REL=", has.relativeAxes},
                        {"B: ABS=", has.absoluteAxes},
                        {"B: PROP=", has.properties}};
    for (const Map& map : maps) {
        if (line.startsWith(map.key)) {
            map.bitmap.parse(line.sliced(map.key.size()));
        }
    }
    if (line.startsWith("I: ")) {
        device.bus = idAfter(line, "Bus=");
        device.vendor = idAfter(line, "Vendor=");
        device.product = idAfter(line, "Product=");
    } else if (line.startsWith("N: ")) {
        device.name = quotedName(line);
    }
}

} // namespace

QList<InputDeviceDescription> parseInputDevices(QByteArrayView text)
{
    QList<InputDeviceDescription> devices;
    InputDeviceDescription device;
    Capabilities capabilities;
    bool inBlock = false;
    const auto endBlock = [&] {
        if (inBlock) {
            device.kind = kindOf(capabilities);
            devices.append(std::exchange(device, {}));
            capabilities = {};
            inBlock = false;
        }
    };
    forEachLine(text, [&](QByteArrayView line) {
        if (line.isEmpty()) {
            endBlock();
        } else {
            readLine(line, device, capabilities);
            inBlock = true;
        }
        return false;
    });
    endBlock();
    return devices;
}
