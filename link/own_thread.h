#pragma once

#include <QThread>

namespace brivant {

// A thread with an event loop for objects whose calls may wait. When it goes, it first carries out what it
// was asked to; a thread that hangs then is left behind, so that the program ends all the same.
class own_thread {
public:
    own_thread() : thread(new QThread), caller(new QObject) {
        caller->moveToThread(thread);
        thread->start();
    }
    ~own_thread() {
        QMetaObject::invokeMethod(
            caller, [thread = thread] { thread->quit(); }, Qt::QueuedConnection);
        if (!thread->wait(longest_wait_ms))
            return;
        delete caller;
        delete thread;
    }
    own_thread(const own_thread&) = delete;
    own_thread& operator=(const own_thread&) = delete;

    void take(QObject* object) { object->moveToThread(thread); }

private:
    static constexpr unsigned long longest_wait_ms = 2000;

    QThread* thread;
    QObject* caller; // lives on the thread
};

} // namespace brivant
