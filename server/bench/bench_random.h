#pragma once

#include <cstdint>

// A small deterministic generator (SplitMix64): the same seed makes the same data on every
// machine, so runs compare.

namespace qf::bench {

class BenchRandom {
public:
    explicit BenchRandom(uint64_t seed) : m_state(seed) {}

    uint64_t next() {
        uint64_t z = (m_state += 0x9e3779b97f4a7c15ULL);
        z = (z ^ (z >> 30)) * 0xbf58476d1ce4e5b9ULL;
        z = (z ^ (z >> 27)) * 0x94d049bb133111ebULL;
        return z ^ (z >> 31);
    }
    // In [low, high].
    int64_t between(int64_t low, int64_t high) { return low + int64_t(next() % uint64_t(high - low + 1)); }
    // In [0, 1).
    double unit() { return double(next() >> 11) * 0x1.0p-53; }
    bool chance(double p) { return unit() < p; }

private:
    uint64_t m_state;
};

} // namespace qf::bench
