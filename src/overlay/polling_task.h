#pragma once

#include <QTimer>
#include <chrono>
#include <coroutine>

// The handle of the overlay's running loop: whether it was cancelled, and the wait between its
// passes, which a cancellation ends at once.
class PollingTask {
public:
    PollingTask();
    PollingTask(const PollingTask&) = delete;
    PollingTask& operator=(const PollingTask&) = delete;

    [[nodiscard]] bool cancelled() const { return m_cancelled; }
    // Marks the task cancelled and resumes a loop that is waiting, before returning.
    void cancel();

    // co_await task.wait(interval): resumes after the interval (on the monotonic clock Qt's
    // timers run on), or at once when the task is cancelled.
    [[nodiscard]] auto wait(std::chrono::milliseconds interval) {
        struct Awaiter {
            PollingTask& task;
            std::chrono::milliseconds interval;
            bool await_ready() const noexcept { return task.m_cancelled; }
            void await_suspend(std::coroutine_handle<> waiting) {
                task.m_waiting = waiting;
                task.m_timer.start(interval);
            }
            void await_resume() const noexcept {}
        };
        return Awaiter{*this, interval};
    }

private:
    void resume();

    bool m_cancelled = false;
    QTimer m_timer;
    std::coroutine_handle<> m_waiting;
};
