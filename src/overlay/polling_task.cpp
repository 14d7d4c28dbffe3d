#include "overlay/polling_task.h"

#include <utility>

PollingTask::PollingTask() {
    m_timer.setSingleShot(true);
    QObject::connect(&m_timer, &QTimer::timeout, [this] { resume(); });
}

void PollingTask::cancel() {
    m_cancelled = true;
    m_timer.stop();
    resume();
}

void PollingTask::resume() {
    if (std::coroutine_handle<> waiting = std::exchange(m_waiting, {}))
        waiting.resume();
}
