// SPDX-License-Identifier: GPL-3.0-or-later
#include "system/EvdevDevice.h"

#include <QFile>

#include <fcntl.h>
#include <linux/input.h>
#include <sys/ioctl.h>

#include <algorithm>
#include <array>
#include <initializer_list>
#include <limits>

namespace {

/// A set of event types or codes as the kernel takes it: bit n of the little-endian bytes for n.
template <size_t Count>
class CodeSet final
{
public:
    void add(size_t first, size_t last)
    {
        for (size_t code = first; code <= last; ++code) {
            m_bytes.at(code / BitsPerByte) |= static_cast<quint8>(1U << (code % BitsPerByte));
        }
    }

    void add(std::initializer_list<size_t> codes)
    {
        for (const size_t code : codes) {
            add(code, code);
        }
    }

    bool contains(size_t code) const
    {
        const unsigned int byte = m_bytes.at(code / BitsPerByte);
        return (byte >> (code % BitsPerByte) & 1U) != 0;
    }

    quint8* data() { return m_bytes.data(); }

    static constexpr size_t size() { return Bytes; }

private:
    static constexpr size_t BitsPerByte = 8;
    static constexpr size_t BytesPerWord = sizeof(unsigned long);
    static constexpr size_t BitsPerWord = BytesPerWord * BitsPerByte;
    static constexpr size_t Bytes = (Count + BitsPerWord - 1) / BitsPerWord * BytesPerWord;

    alignas(unsigned long) std::array<quint8, Bytes> m_bytes{};
};

template <size_t Count>
void setMask(int descriptor, quint32 type, CodeSet<Count>& codes)
{
    input_mask mask = {};
    mask.type = type;
    mask.codes_size = static_cast<quint32>(codes.size());
    mask.codes_ptr = reinterpret_cast<quintptr>(codes.data());
    ioctl(descriptor, EVIOCSMASK, &mask);
}

int range(const input_absinfo& axis)
{
    const qint64 extent = qint64{axis.maximum} - axis.minimum;
    constexpr qint64 lowest = std::numeric_limits<int>::min();
    constexpr qint64 highest = std::numeric_limits<int>::max();
    return static_cast<int>(std::clamp(extent, lowest, highest));
}

} // namespace

FileDescriptor EvdevDevice::open(const QString& path)
{
    const QByteArray name = QFile::encodeName(path);
    constexpr int attempts = 3;
    int descriptor = -1;
    for (int attempt = 0; attempt < attempts && descriptor == -1; ++attempt) {
        // Opening a pipe that no one writes to would wait for a writer without O_NONBLOCK.
        descriptor = ::open(name.constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY);
    }
    if (descriptor != -1) {
        fcntl(descriptor, F_SETFL, O_RDONLY);
    }
    return FileDescriptor(descriptor);
}

void EvdevDevice::wantCountedEventsOnly(int descriptor)
{
    CodeSet<KEY_CNT> keys;
    constexpr size_t lastKey = 255;
    keys.add(0, lastKey);
    keys.add(BTN_LEFT, BTN_TASK);
    CodeSet<REL_CNT> relative;
    relative.add({REL_X, REL_Y, REL_WHEEL, REL_HWHEEL});
    CodeSet<ABS_CNT> absolute;
    absolute.add({ABS_X, ABS_Y});
    CodeSet<EV_CNT> types;
    types.add({EV_KEY, EV_REL, EV_ABS});

    setMask(descriptor, EV_KEY, keys);
    setMask(descriptor, EV_REL, relative);
    setMask(descriptor, EV_ABS, absolute);
    // The kernel takes the mask of type EV_SYN for the mask of the types themselves.
    setMask(descriptor, EV_SYN, types);
}

std::optional<EvdevDevice::AxisRanges> EvdevDevice::absoluteAxisRanges(int descriptor)
{
    CodeSet<ABS_CNT> axes;
    if (ioctl(descriptor, EVIOCGBIT(EV_ABS, axes.size()), axes.data()) < 0 ||
        !axes.contains(ABS_X) || !axes.contains(ABS_Y)) {
        return std::nullopt;
    }
    input_absinfo x = {};
    input_absinfo y = {};
    if (ioctl(descriptor, EVIOCGABS(ABS_X), &x) < 0 ||
        ioctl(descriptor, EVIOCGABS(ABS_Y), &y) < 0) {
        return std::nullopt;
    }
    return AxisRanges{.x = range(x), .y = range(y)};
}
