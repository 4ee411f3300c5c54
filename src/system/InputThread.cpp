// SPDX-License-Identifier: GPL-3.0-or-later
#include "system/InputThread.h"

#include "base/Log.h"
#include "system/AbstractSystemListener.h"
#include "system/ClickPosition.h"
#include "system/InputAccess.h"
#include "system/UnifiedListener.h"

#include <QCoreApplication>
#include <QCursor>
#include <QFileInfo>
#include <QFileSystemWatcher>
#include <QGuiApplication>
#include <QScreen>

#include <algorithm>
#include <limits>
#include <utility>

namespace {

constexpr std::chrono::milliseconds ScreenGeometryLifetime{10'000};

} // namespace

InputThread::InputThread(ReceiverAccess receiver, const QString& directory, QObject* parent)
    : QObject(parent)
    , m_receiver(std::move(receiver))
    , m_directory(directory)
{
    qRegisterMetaType<Qt::Key>("KeyPress");
    qRegisterMetaType<unsigned short>("MouseClick");
}

InputThread::~InputThread()
{
    stop();
}

void InputThread::start()
{
    if (m_watcher) {
        return;
    }
    m_watcher = std::make_unique<QFileSystemWatcher>();
    connect(m_watcher.get(), &QFileSystemWatcher::directoryChanged, this,
            &InputThread::directoryChanged);
    // Watched before it is read, so that no device can come in between unseen.
    watchDirectory();
    startListeners();
}

void InputThread::stop()
{
    m_watcher.reset();
    stopListeners();
    m_unreadable.clear();
}

bool InputThread::hasListeners() const
{
    return !m_listeners.isEmpty();
}

/// The directory exists only while there is an input device: until then its parent is watched.
void InputThread::watchDirectory()
{
    const QString parent = QFileInfo(m_directory).path();
    if (!QFileInfo(m_directory).isDir() && !m_watcher->directories().contains(parent)) {
        m_watcher->addPath(parent);
    }
    // Looked at again: it may have come before its parent was watched.
    if (QFileInfo(m_directory).isDir() && !m_watcher->directories().contains(m_directory)) {
        m_watcher->addPath(m_directory);
        if (m_watcher->directories().contains(parent)) {
            m_watcher->removePath(parent);
        }
    }
}

/// Told as well of a change to the rights of a node: the kernel makes it for root alone, and only
/// then the device manager lets others read it.
void InputThread::directoryChanged()
{
    const bool known = m_watcher->directories().contains(m_directory);
    watchDirectory();
    if (known || m_watcher->directories().contains(m_directory)) {
        startListeners();
    }
}

void InputThread::startListeners()
{
    const QHash<QString, DeviceNode> unreadable = std::exchange(m_unreadable, {});
    for (const QString& path : inputDeviceNodes(m_directory)) {
        if (m_listeners.contains(path)) {
            continue;
        }
        const auto known = unreadable.constFind(path);
        if (known != unreadable.constEnd() && known->isStillUnreadable(path)) {
            // Said once, and not at every change of the directory.
            m_unreadable.insert(path, *known);
        } else {
            startListener(path);
        }
    }
    if (m_listeners.isEmpty()) {
        Log::info(
            "No input devices (/dev/input/*) found! Tallyvane cannot count your keys/clicks.");
    }
}

void InputThread::startListener(const QString& path)
{
    Log::info("Creating device listener for {}", path);
    constexpr bool listenKeyboard = true;
    constexpr bool listenMouse = true;
    // Looked at before it is opened: a change in between then counts as one that came later.
    const auto node = DeviceNode::at(path);
    auto listener = std::make_unique<UnifiedListener>(path, listenKeyboard, listenMouse);
    if (listener->openFailed()) {
        if (node) {
            m_unreadable.insert(path, *node);
        }
        return;
    }
    UnifiedListener* const started = listener.release();
    started->setParent(this);
    connectListener(started);
    started->start();
    m_listeners.insert(path, started);
}

void InputThread::connectListener(UnifiedListener* listener) const
{
    connect(listener, &UnifiedListener::keyDown, this, &InputThread::keyDown);
    connect(listener, &UnifiedListener::keyUp, this, &InputThread::keyUp);
    connect(listener, &UnifiedListener::mouseButtonDown, this, &InputThread::buttonDown);
    connect(listener, &UnifiedListener::mouseButtonUp, this, &InputThread::buttonUp);
    connect(listener, &UnifiedListener::mouseScrollDown, this, &InputThread::mouseScrollDown);
    connect(listener, &UnifiedListener::mouseScrollUp, this, &InputThread::mouseScrollUp);
    connect(listener, &UnifiedListener::mouseScrollLeft, this, &InputThread::mouseScrollLeft);
    connect(listener, &UnifiedListener::mouseScrollRight, this, &InputThread::mouseScrollRight);
    connect(listener, &UnifiedListener::deviceRemoved, this, &InputThread::deviceRemoved);
    connect(listener, &UnifiedListener::readingEnded, this, &InputThread::forget);
}

void InputThread::deviceRemoved(QString path)
{
    Log::info("Removing device listener for {}", path);
    if (UnifiedListener* const listener = m_listeners.value(path)) {
        listener->stop();
        forget(listener);
    }
}

/// Drops a listener whose thread is over. Where another node has taken its path meanwhile, the
/// change of the directory was seen too early to read it; so it is looked for again.
void InputThread::forget(UnifiedListener* listener)
{
    if (m_listeners.value(listener->path()) != listener) {
        return;
    }
    m_listeners.remove(listener->path());
    m_pixelsOfEndedListeners += listener->takeMouseMovedPixels();
    if (m_watcher && listener->isReplaced()) {
        startListeners();
    }
}

void InputThread::stopListeners()
{
    const QList<UnifiedListener*> listeners = m_listeners.values();
    for (UnifiedListener* const listener : listeners) {
        Log::info("Closing device listener for {}", listener->path());
        listener->stop();
    }
    // Children include those that ended by themselves a moment ago and were not yet deleted.
    for (UnifiedListener* const listener : findChildren<UnifiedListener*>()) {
        listener->wait();
    }
    fetchQueuedSignals();
    for (UnifiedListener* const listener : findChildren<UnifiedListener*>()) {
        // Carries out its deleteLater() now, since the event loop may have ended.
        QCoreApplication::sendPostedEvents(listener, QEvent::MetaCall);
        QCoreApplication::sendPostedEvents(listener, QEvent::DeferredDelete);
    }
}

void InputThread::fetchQueuedSignals()
{
    QCoreApplication::sendPostedEvents(this, QEvent::MetaCall);
}

QList<Qt::Key> InputThread::takeKeyPresses()
{
    fetchQueuedSignals();
    return std::exchange(m_keyPresses, {});
}

QList<unsigned short> InputThread::takeMouseClicks()
{
    fetchQueuedSignals();
    return std::exchange(m_mouseClicks, {});
}

/// Not fetched anew, so that there are as many as there were clicks in the take just before.
QList<QPointF> InputThread::takeMousePoints()
{
    return std::exchange(m_mousePoints, {});
}

int InputThread::takeMouseScrollsDown()
{
    fetchQueuedSignals();
    return std::exchange(m_scrollsDown, 0);
}

int InputThread::takeMouseScrollsUp()
{
    fetchQueuedSignals();
    return std::exchange(m_scrollsUp, 0);
}

int InputThread::takeMouseScrollsLeft()
{
    fetchQueuedSignals();
    return std::exchange(m_scrollsLeft, 0);
}

int InputThread::takeMouseScrollsRight()
{
    fetchQueuedSignals();
    return std::exchange(m_scrollsRight, 0);
}

int InputThread::takeMouseDistancePixels()
{
    qint64 pixels = std::exchange(m_pixelsOfEndedListeners, 0);
    for (UnifiedListener* const listener : std::as_const(m_listeners)) {
        pixels += listener->takeMouseMovedPixels();
    }
    constexpr qint64 most = std::numeric_limits<int>::max();
    return static_cast<int>(std::min(pixels, most));
}

void InputThread::keyDown(Qt::Key)
{
    if (AbstractSystemListener* const receiver = m_receiver()) {
        receiver->onKeyDown();
    }
}

void InputThread::keyUp(Qt::Key key)
{
    m_keyPresses.append(key);
    if (AbstractSystemListener* const receiver = m_receiver()) {
        receiver->onKeyUp();
    }
}

void InputThread::buttonDown(unsigned short)
{
    if (AbstractSystemListener* const receiver = m_receiver()) {
        receiver->onMouseButtonDown();
    }
}

void InputThread::buttonUp(unsigned short button)
{
    m_mousePoints.append(clickPosition(QCursor::pos(), primaryScreenGeometry()));
    m_mouseClicks.append(button);
    if (AbstractSystemListener* const receiver = m_receiver()) {
        receiver->onMouseButtonUp();
    }
}

/// While no screen is connected, the last one stands in.
QRect InputThread::primaryScreenGeometry()
{
    if (!m_screenGeometryAge.isValid() ||
        m_screenGeometryAge.elapsed() >= ScreenGeometryLifetime.count()) {
        if (const QScreen* const screen = QGuiApplication::primaryScreen()) {
            m_screenGeometry = screen->geometry();
        }
        m_screenGeometryAge.start();
    }
    return m_screenGeometry;
}

void InputThread::mouseScrollDown()
{
    ++m_scrollsDown;
}

void InputThread::mouseScrollUp()
{
    ++m_scrollsUp;
}

void InputThread::mouseScrollLeft()
{
    ++m_scrollsLeft;
}

void InputThread::mouseScrollRight()
{
    ++m_scrollsRight;
}
