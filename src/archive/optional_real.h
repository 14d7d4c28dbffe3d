#pragma once

#include <bit>
#include <cstdint>
#include <optional>

// An optional double in the double's own eight bytes: absence is one NaN that no JSON answer or
// SQLite column can carry (neither has a spelling for NaN). std::optional<double> takes sixteen,
// and a row has three of them.
class OptionalReal {
public:
    OptionalReal() = default;
    OptionalReal(std::nullopt_t) {}
    OptionalReal(double value) : m_bits(std::bit_cast<std::uint64_t>(value)) {}
    OptionalReal(const std::optional<double>& value) : OptionalReal() {
        if (value)
            m_bits = std::bit_cast<std::uint64_t>(*value);
    }

    [[nodiscard]] bool has_value() const { return m_bits != absent; }
    explicit operator bool() const { return has_value(); }
    [[nodiscard]] double operator*() const { return std::bit_cast<double>(m_bits); }
    [[nodiscard]] double value() const { return std::bit_cast<double>(m_bits); }
    [[nodiscard]] double value_or(double fallback) const { return has_value() ? value() : fallback; }
    [[nodiscard]] std::optional<double> toOptional() const {
        return has_value() ? std::optional<double>(value()) : std::nullopt;
    }
    void reset() { m_bits = absent; }

    friend bool operator==(OptionalReal a, OptionalReal b) { return a.m_bits == b.m_bits; }

private:
    // A quiet NaN with a payload of our own.
    static constexpr std::uint64_t absent = 0x7FF8'0000'0BAD'F00DULL;
    std::uint64_t m_bits = absent;
};
