#pragma once

#include <QtGlobal>
#include <limits>
#include <optional>

// An optional 32-bit figure in four bytes: absence is the lowest value, which no game figure
// takes (a record that carries it is kept exactly elsewhere, as for any figure that does not
// fit). std::optional<qint32> takes eight.
class OptionalInt {
public:
    static constexpr qint32 absent = std::numeric_limits<qint32>::min();

    OptionalInt() = default;
    OptionalInt(std::nullopt_t) {}
    // value must not be absent; fits() tells.
    OptionalInt(qint32 value) : m_value(value) {}

    [[nodiscard]] static bool fits(qint64 value) {
        return value > absent && value <= std::numeric_limits<qint32>::max();
    }

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
    qint32 m_value = absent;
};
