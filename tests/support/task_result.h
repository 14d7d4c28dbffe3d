#pragma once

#include "backend/backend_error.h"

#include <QCoro/QCoroTask>
#include <QEventLoop>
#include <exception>
#include <optional>
#include <type_traits>

// Runs a task to its end in a nested event loop and returns its result or rethrows what it
// threw. (QCoro's own waitFor never returns when the task throws.)
template <class T> T runTask(QCoro::Task<T> task) {
    QEventLoop loop;
    bool done = false;
    std::exception_ptr error;
    using Stored = std::conditional_t<std::is_void_v<T>, bool, T>;
    std::optional<Stored> result;
    auto runner = [&]() -> QCoro::Task<> {
        try {
            if constexpr (std::is_void_v<T>) {
                co_await task;
                result = true;
            } else {
                result = co_await task;
            }
        } catch (...) {
            error = std::current_exception();
        }
        done = true;
        loop.quit();
    };
    QCoro::Task<> running = runner();
    if (!done)
        loop.exec();
    if (error)
        std::rethrow_exception(error);
    if constexpr (!std::is_void_v<T>)
        return std::move(*result);
}

// Runs a task to its end and hands back the backend error it threw, if any.
template <class T> std::optional<BackendError> backendErrorOf(QCoro::Task<T> task) {
    try {
        runTask(std::move(task));
    } catch (const BackendError& error) {
        return error;
    }
    return std::nullopt;
}

inline QString describeOrEmpty(const std::optional<BackendError>& error) {
    return error ? error->description() : QStringLiteral("<no error>");
}
