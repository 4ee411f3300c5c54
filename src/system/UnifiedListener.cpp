// SPDX-License-Identifier: GPL-3.0-or-later
#include "system/UnifiedListener.h"

#include "base/Log.h"
#include "system/EvdevDevice.h"
#include "system/KeyMap.h"

#include <QDateTime>
#include <QFileInfo>
#include <QGuiApplication>
#include <QKeySequence>
#include <QScreen>

#include <linux/input.h>
#include <poll.h>
#include <sys/eventfd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <limits>
#include <utility>

namespace {

using Kind = InputAction::Kind;

/// As many as the kernel keeps for a keyboard.
constexpr size_t RecordsPerRead = 64;

constexpr std::chrono::minutes LossWarningPause{1};

/// A device that reports more often than this is left to gather for a moment between two reads:
/// being woken costs far more than reading. The kernel's queue holds about 5 ms of an 8 kHz mouse.
constexpr quint64 FastRecordDistance = 250; // In microseconds.
constexpr int GatherMilliseconds = 1;

QString portableText(Qt::Key key)
{
    return QKeySequence(key).toString(QKeySequence::PortableText);
}

/// The pixels between the first and the last column and row of the primary screen.
QSize screenExtent()
{
    const QScreen* const screen = QGuiApplication::primaryScreen();
    if (screen == nullptr) {
        return {-1, -1};
    }
    const QRect geometry = screen->geometry();
    return {geometry.right() - geometry.left(), geometry.bottom() - geometry.top()};
}

} // namespace

UnifiedListener::UnifiedListener(const QString& path, bool listenKeyboard, bool listenMouse)
    : m_path(path)
    , m_listenKeyboard(listenKeyboard)
    , m_node(DeviceNode::at(path))
    , m_wakeUp(eventfd(0, EFD_CLOEXEC))
    , m_lossWarning(LossWarningPause)
{
    // A thread that nothing could wake must not start.
    m_device = m_wakeUp.isValid() ? EvdevDevice::open(path) : FileDescriptor();
    if (openFailed()) {
        Log::error("Couldn't open device {}! error: {}", path, std::strerror(errno));
        Log::error("Make sure you have permission to read that file.\n");
        return;
    }
    connect(this, &QThread::finished, this, &QObject::deleteLater);
    EvdevDevice::wantCountedEventsOnly(m_device.get());
    AxisScales scales;
    m_isAbsolute = getHardwareMaximum(scales);
    m_decoder.emplace(QDateTime::currentSecsSinceEpoch(), scales, listenMouse);
    setObjectName(QFileInfo(path).fileName()); // Names the thread, too.
}

UnifiedListener::~UnifiedListener() = default;

bool UnifiedListener::isReplaced() const
{
    const std::optional<DeviceNode> now = DeviceNode::at(m_path);
    return now && m_node && !now->isSameNode(*m_node);
}

void UnifiedListener::stop()
{
    m_stopRequested = true;
    eventfd_write(m_wakeUp.get(), 1);
}

int UnifiedListener::takeMouseMovedPixels()
{
    constexpr qint64 most = std::numeric_limits<int>::max();
    return static_cast<int>(std::min(m_mouseMovedPixels.exchange(0), most));
}

Qt::Key UnifiedListener::translateKeycode(unsigned short code)
{
    return KeyMap::translate(code);
}

bool UnifiedListener::getHardwareMaximum(AxisScales& scales) const
{
    const auto ranges = EvdevDevice::absoluteAxisRanges(m_device.get());
    if (!ranges) {
        return false;
    }
    const QSize extent = screenExtent();
    scales.x = static_cast<double>(ranges->x) / extent.width();
    scales.y = static_cast<double>(ranges->y) / extent.height();
    Log::debug("Absolute pointing device");
    Log::debug("hardware max x {}", ranges->x);
    Log::debug("hardware max y {}", ranges->y);
    Log::debug("hardware scalers x {} y {}", scales.x, scales.y);
    return true;
}

void UnifiedListener::run()
{
    readRecords();
    warnOfLostEvents();
    Q_EMIT readingEnded(this);
}

void UnifiedListener::readRecords()
{
    std::array<input_event, RecordsPerRead> records{};
    quint64 lastTime = 0;
    while (waitForRecords()) {
        const ssize_t length = read(m_device.get(), records.data(), sizeof(records));
        if (length < 0 && errno == EINTR) {
            continue;
        }
        if (length < 0 && errno != EAGAIN) {
            reportReadError(errno);
        }
        if (length <= 0) {
            return;
        }
        // What is left beyond whole records is a short read, which is dropped.
        const size_t count = static_cast<size_t>(length) / sizeof(input_event);
        for (size_t i = 0; i < count && !m_stopRequested; ++i) {
            handle(m_decoder->decode(records.at(i)));
        }
        if (count > 0 && count < records.size()) {
            const quint64 time = EvdevDecoder::microseconds(records.at(count - 1));
            const quint64 passed = time - std::exchange(lastTime, time);
            if (passed > 0 && passed < count * FastRecordDistance) {
                letRecordsGather();
            }
        }
    }
}

/// Returns false once the thread shall end.
bool UnifiedListener::waitForRecords()
{
    std::array<pollfd, 2> watched{pollfd{m_device.get(), POLLIN, 0},
                                  pollfd{m_wakeUp.get(), POLLIN, 0}};
    constexpr int forever = -1;
    // An interruption by a signal leads around once more; an error of the device shows in read().
    while (!m_stopRequested && poll(watched.data(), watched.size(), forever) < 0 &&
           errno == EINTR) {
    }
    return !m_stopRequested;
}

void UnifiedListener::letRecordsGather()
{
    pollfd wakeUp{m_wakeUp.get(), POLLIN, 0};
    poll(&wakeUp, 1, GatherMilliseconds);
}

void UnifiedListener::reportReadError(int error)
{
    Log::error("Bad read from device! error: {}", std::strerror(error));
    Q_EMIT deviceRemoved(m_path);
}

void UnifiedListener::handle(const InputAction& action)
{
    switch (action.kind) {
    case Kind::None:
        return;
    case Kind::KeyDown:
    case Kind::KeyUp:
        return signalKey(action);
    case Kind::FakeLeftPress:
        return Log::trace("ignoring fake-looking 'left' key press");
    case Kind::FakeRightPress:
        return Log::trace("ignoring fake-looking 'right' key press");
    case Kind::ButtonDown:
    case Kind::ButtonUp:
    case Kind::ButtonHeld:
        return signalButton(action);
    case Kind::ScrollUp:
        return Q_EMIT mouseScrollUp();
    case Kind::ScrollDown:
        return Q_EMIT mouseScrollDown();
    case Kind::ScrollLeft:
        return Q_EMIT mouseScrollLeft();
    case Kind::ScrollRight:
        return Q_EMIT mouseScrollRight();
    case Kind::Travel:
        m_mouseMovedPixels.fetch_add(action.amount, std::memory_order_relaxed);
        return;
    case Kind::EventsLost:
        return countLostEvents();
    }
}

void UnifiedListener::signalKey(const InputAction& action)
{
    const Qt::Key key = translateKeycode(action.code);
    if (Log::isEnabled(Log::Level::Trace)) {
        // Worded alike for presses and releases.
        Log::trace("key down: {} translated: {}", action.code, portableText(key));
    }
    if (action.kind == Kind::KeyUp) {
        Q_EMIT keyUp(key);
    } else {
        Q_EMIT keyDown(key);
    }
}

void UnifiedListener::signalButton(const InputAction& action)
{
    const auto button = static_cast<unsigned short>(action.amount);
    Log::trace(
        "code >= BTN_LEFT && code <= BTN_TASK - Event type: {}, event code: {}, translated: {}",
        EV_KEY, action.code, button);
    if (action.kind == Kind::ButtonUp) {
        Q_EMIT mouseButtonUp(button);
    } else if (action.kind == Kind::ButtonDown) {
        Q_EMIT mouseButtonDown(button);
    }
}

void UnifiedListener::countLostEvents()
{
    ++m_unreportedLosses;
    if (m_lossWarning.isDue()) {
        warnOfLostEvents();
    }
}

void UnifiedListener::warnOfLostEvents()
{
    if (m_unreportedLosses > 0) {
        Log::warn("The kernel dropped events of {}, times: {}", m_path, m_unreportedLosses);
        m_unreportedLosses = 0;
    }
}
