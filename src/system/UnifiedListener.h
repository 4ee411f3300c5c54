// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/FileDescriptor.h"
#include "base/RepeatedWarning.h"
#include "system/DeviceNode.h"
#include "system/EvdevDecoder.h"

#include <QString>
#include <QThread>

#include <atomic>
#include <optional>

/// Reads one input device in a thread of its own, from `start()` until the device goes away or
/// `stop()` is called, and signals what happened on it.
///
/// Thread: created, stopped and taken from on the main thread. The signals come from the reading
/// thread; a receiver on the main thread gets them queued. Frees itself once the thread has ended.
class UnifiedListener final : public QThread
{
    Q_OBJECT

public:
    /// Opens the device node at `path`. Where that fails, logs why and sets `openFailed`; such a
    /// listener must not be started. Buttons are signalled only with `listenMouse`.
    UnifiedListener(const QString& path, bool listenKeyboard, bool listenMouse);

    /// The thread must have ended.
    ~UnifiedListener() override;

    QString path() const { return m_path; }

    bool openFailed() const { return !m_device.isValid(); }

    /// Whether the node at the path is no longer the one this listener opened.
    bool isReplaced() const;

    /// Asks the thread to end and wakes it. Returns at once; `wait()` returns when it has ended.
    void stop();

    /// The pointer's travel in pixels since the last take.
    int takeMouseMovedPixels();

    /// The value under which a key is counted; `Qt::Key_unknown` for a code without one.
    static Qt::Key translateKeycode(unsigned short code);

Q_SIGNALS:
    void keyDown(Qt::Key key);
    void keyUp(Qt::Key key);
    void mouseButtonDown(unsigned short button);
    void mouseButtonUp(unsigned short button);
    void mouseScrollDown();
    void mouseScrollUp();
    void mouseScrollLeft();
    void mouseScrollRight();
    void deviceRemoved(QString path);

    /// The last signal of the thread, whatever ended it. Unlike `finished`, a queued receiver gets
    /// it while this object still exists.
    void readingEnded(UnifiedListener* listener);

protected:
    void run() override;

private:
    /// Asks the device for its position axes; false where it has none. Fills the scales if it has.
    bool getHardwareMaximum(AxisScales& scales) const;

    void readRecords();
    bool waitForRecords();
    void letRecordsGather();
    void reportReadError(int error);
    void handle(const InputAction& action);
    void signalKey(const InputAction& action);
    void signalButton(const InputAction& action);
    void countLostEvents();
    void warnOfLostEvents();

    QString m_path;
    [[maybe_unused]] bool m_listenKeyboard;
    std::optional<DeviceNode> m_node; ///< As it was when opened.
    FileDescriptor m_wakeUp;          ///< An eventfd, readable once the thread shall end.
    FileDescriptor m_device;
    std::atomic<bool> m_stopRequested = false;
    std::atomic<qint64> m_mouseMovedPixels = 0;
    bool m_isAbsolute = false;
    std::optional<EvdevDecoder> m_decoder;
    RepeatedWarning m_lossWarning;
    quint64 m_unreportedLosses = 0;
};
