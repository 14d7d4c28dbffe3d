#pragma once

#include <QtGlobal>
#include <limits>
#include <optional>

// An optional whole figure in the width of T: absence is T's lowest value, which no game figure
// takes (a record that carries it, or a figure beyond T, is kept exactly elsewhere, as for any
// figure that does not fit). std::optional<T> would take twice the room.
template <class T> class OptionalInt {
public:
    static constexpr T absent = std::numeric_limits<T>::min();

    OptionalInt() = default;
    OptionalInt(std::nullopt_t) {}
    // value must not be absent; fits() tells.
    OptionalInt(T value) : m_value(value) {}

    [[nodiscard]] static bool fits(qint64 value) { return value > absent && value <= std::numeric_limits<T>::max(); }

    [[nodiscard]] bool has_value() const { return m_value != absent; }
    explicit operator bool() const { return has_value(); }
    [[nodiscard]] qint32 operator*() const { return m_value; }
    [[nodiscard]] qint32 value() const { return m_value; }
    [[nodiscard]] qint32 value_or(qint32 fallback) const { return has_value() ? m_value : fallback; }
    [[nodiscard]] std::optional<qint64> toOptional() const {
        return has_value() ? std::optional<qint64>(m_value) : std::nullopt;
    }
    void reset() { m_value = absent; }

    friend bool operator==(OptionalInt a, OptionalInt b) { return a.m_value == b.m_value; }

private:
    T m_value = absent;
};
