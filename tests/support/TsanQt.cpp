// SPDX-License-Identifier: GPL-3.0-or-later
// Shows the thread sanitizer the order that Qt's locks and threads impose. The distribution's Qt is
// built without it and waits through futexes, which it does not see: without this file it reports
// whatever a `QReadWriteLock` guards and whatever is read after `QThread::wait`.
//
// A program's own definition comes before the library's, so each of these takes the call, passes it
// on, and tells the sanitizer. `QMutex` needs nothing: its inline functions do the same.
#include <QDeadlineTimer>
#include <QReadWriteLock>
#include <QThread>

#include <dlfcn.h>
#include <sanitizer/tsan_interface.h>

#include <algorithm>
#include <vector>

namespace {

/// The library's definition of a function, by its mangled name.
template <typename Function>
Function next(const char* name)
{
    return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

/// The locks that this thread holds for reading; `unlock` does not say.
thread_local std::vector<QReadWriteLock*> t_readLocks;

/// Stands for what the readers of a lock did; the lock itself stands for what its writers did.
void* readersOf(QReadWriteLock* lock)
{
    return reinterpret_cast<char*>(lock) + 1;
}

} // namespace

void QReadWriteLock::lockForRead()
{
    static const auto inQt = next<void (*)(QReadWriteLock*)>("_ZN14QReadWriteLock11lockForReadEv");
    inQt(this);
    __tsan_acquire(this);
    t_readLocks.push_back(this);
}

void QReadWriteLock::lockForWrite()
{
    static const auto inQt = next<void (*)(QReadWriteLock*)>("_ZN14QReadWriteLock12lockForWriteEv");
    inQt(this);
    __tsan_acquire(this);
    __tsan_acquire(readersOf(this));
}

void QReadWriteLock::unlock()
{
    static const auto inQt = next<void (*)(QReadWriteLock*)>("_ZN14QReadWriteLock6unlockEv");
    const auto held = std::find(t_readLocks.begin(), t_readLocks.end(), this);
    if (held == t_readLocks.end()) {
        __tsan_release(this);
    } else {
        __tsan_release(readersOf(this));
        t_readLocks.erase(held);
    }
    inQt(this);
}

void QThread::start(Priority priority)
{
    using Start = void (*)(QThread*, Priority);
    static const auto inQt = next<Start>("_ZN7QThread5startENS_8PriorityE");
    // Emitted by the thread itself, when it has run.
    connect(
        this, &QThread::finished, this, [this] { __tsan_release(this); }, Qt::DirectConnection);
    inQt(this, priority);
}

bool QThread::wait(QDeadlineTimer deadline)
{
    using Wait = bool (*)(QThread*, QDeadlineTimer);
    static const auto inQt = next<Wait>("_ZN7QThread4waitE14QDeadlineTimer");
    const bool ended = inQt(this, deadline);
    if (ended) {
        __tsan_acquire(this);
    }
    return ended;
}

// What a functor captured was written before its event was posted, and is read when the receiver
// takes the event. Qt's own classes as receivers are out of reach here.

bool QMetaObject::invokeMethodImpl(QObject* object, QtPrivate::QSlotObjectBase* slot,
                                   Qt::ConnectionType type, void* result)
{
    static const auto inQt =
        next<bool (*)(QObject*, QtPrivate::QSlotObjectBase*, Qt::ConnectionType, void*)>(
            "_ZN11QMetaObject16invokeMethodImplEP7QObjectPN9QtPrivate15QSlotObjectBaseEN2Qt"
            "14ConnectionTypeEPv");
    __tsan_release(object);
    return inQt(object, slot, type, result);
}

bool QObject::event(QEvent* event)
{
    static const auto inQt = next<bool (*)(QObject*, QEvent*)>("_ZN7QObject5eventEP6QEvent");
    __tsan_acquire(this);
    return inQt(this, event);
}
