// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "system/DeviceNode.h"

#include <QElapsedTimer>
#include <QHash>
#include <QList>
#include <QObject>
#include <QPointF>
#include <QRect>
#include <QString>

#include <functional>
#include <memory>

class AbstractSystemListener;
class QFileSystemWatcher;
class UnifiedListener;

/// Everything that was typed, clicked, scrolled and moved since it was last taken, from all input
/// devices of the machine. Keeps one listener per device, and follows devices that come and go.
///
/// No thread itself, despite its name: it lives on the main thread, as do all its operations. What
/// the listeners' threads signal reaches it through the event queue; a taker first fetches what
/// still waits there, so that no release made before the take is left out, also when no event loop
/// runs any more.
class InputThread final : public QObject
{
    Q_OBJECT

public:
    /// Gives the receiver of activity, or null while there is none. Asked at each event.
    using ReceiverAccess = std::function<AbstractSystemListener*()>;

    /// Opens nothing yet. `directory` holds the device nodes, named event0 and so on.
    explicit InputThread(ReceiverAccess receiver,
                         const QString& directory = QStringLiteral("/dev/input"),
                         QObject* parent = nullptr);
    ~InputThread() override;

    /// Begins to read every device there is and every one that comes. Does nothing while reading.
    void start();

    /// Ends all reading and returns when every listener's thread has ended and every descriptor is
    /// closed. What was counted stays to be taken. May be started again.
    void stop();

    /// Whether at least one device is being read.
    bool hasListeners() const;

    QList<Qt::Key> takeKeyPresses();         ///< The released keys, in order.
    QList<unsigned short> takeMouseClicks(); ///< The released buttons, in order.
    /// Where the pointer was at each button of the last `takeMouseClicks`, in primary screen sizes.
    QList<QPointF> takeMousePoints();
    int takeMouseScrollsDown();
    int takeMouseScrollsUp();
    int takeMouseScrollsLeft();
    int takeMouseScrollsRight();
    int takeMouseDistancePixels();

public Q_SLOTS:
    void keyDown(Qt::Key key);
    void keyUp(Qt::Key key);
    void buttonDown(unsigned short button);
    void buttonUp(unsigned short button);
    void mouseScrollDown();
    void mouseScrollUp();
    void mouseScrollLeft();
    void mouseScrollRight();
    void deviceRemoved(QString path);

private:
    void startListeners();
    void stopListeners();
    void startListener(const QString& path);
    void connectListener(UnifiedListener* listener) const;
    void directoryChanged();
    void watchDirectory();
    void forget(UnifiedListener* listener);
    void fetchQueuedSignals();
    QRect primaryScreenGeometry();

    ReceiverAccess m_receiver;
    QString m_directory;
    QList<unsigned short> m_mouseClicks;
    QRect m_screenGeometry;
    QElapsedTimer m_screenGeometryAge; ///< Invalid until it was first fetched.
    QList<QPointF> m_mousePoints;
    QList<Qt::Key> m_keyPresses;
    int m_scrollsDown = 0;
    int m_scrollsUp = 0;
    int m_scrollsLeft = 0;
    int m_scrollsRight = 0;
    qint64 m_pixelsOfEndedListeners = 0; ///< Travel that a listener left behind when it ended.
    std::unique_ptr<QFileSystemWatcher> m_watcher; ///< Exists while reading.
    QHash<QString, UnifiedListener*> m_listeners;  ///< By path; children of this object.
    QHash<QString, DeviceNode> m_unreadable;       ///< Nodes that could not be opened, by path.
};
