#pragma once

#include <concepts>
#include <cstdint>
#include <span>
#include <string_view>

// The demo's dice: a fixed-seed generator whose numbers are the same on every compiler and
// library, which the standard distributions do not promise. Same seed, same archive.

namespace qf::demo {

// FNV-1a: a stable number for a text (puuids and per-player traits are derived from names).
[[nodiscard]] constexpr uint64_t stableHash(std::string_view text) {
    uint64_t hash = 14695981039346656037ull;
    for (const char c : text) {
        hash ^= static_cast<unsigned char>(c);
        hash *= 1099511628211ull;
    }
    return hash;
}

class Random {
public:
    explicit Random(uint64_t seed) : m_state(seed) {}

    // splitmix64.
    uint64_t next() {
        uint64_t z = (m_state += 0x9e3779b97f4a7c15ull);
        z = (z ^ (z >> 30)) * 0xbf58476d1ce4e5b9ull;
        z = (z ^ (z >> 27)) * 0x94d049bb133111ebull;
        return z ^ (z >> 31);
    }

    // In [0, 1).
    double real() { return static_cast<double>(next() >> 11) * 0x1.0p-53; }
    double between(double lo, double hi) { return lo + (hi - lo) * real(); }
    // In [lo, hi], both included.
    template <std::integral A, std::integral B> int64_t between(A lo, B hi) {
        const auto low = static_cast<int64_t>(lo);
        const auto high = static_cast<int64_t>(hi);
        return high <= low ? low : low + static_cast<int64_t>(next() % static_cast<uint64_t>(high - low + 1));
    }
    bool chance(double p) { return real() < p; }

    // An index drawn with the given weights (all >= 0; index 0 when they are all 0).
    size_t weighted(std::span<const double> weights) {
        double total = 0;
        for (const double w : weights)
            total += w;
        double r = real() * total;
        for (size_t i = 0; i < weights.size(); ++i) {
            if (r < weights[i])
                return i;
            r -= weights[i];
        }
        for (size_t i = weights.size(); i-- > 0;)
            if (weights[i] > 0)
                return i;
        return 0;
    }

    template <class T> const T& pick(std::span<const T> items) { return items[next() % items.size()]; }

private:
    uint64_t m_state;
};

} // namespace qf::demo
