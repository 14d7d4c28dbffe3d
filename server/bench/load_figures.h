#pragma once

#include "sync_load_client.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

// What a load run measured, as the rows of the printed table.

namespace qf::bench {

struct LoadFigures {
    std::string label;
    int64_t pages = 0;
    int64_t rows = 0;
    int64_t bytes = 0;
    double seconds = 0;
    double p50Ms = 0;
    double p99Ms = 0;
    double clientCpuSeconds = 0;
    double serverCpuSeconds = 0; // the serving processes' CPU time over the run

    [[nodiscard]] double pagesPerSecond() const { return seconds > 0 ? double(pages) / seconds : 0; }
    [[nodiscard]] double rowsPerSecond() const { return seconds > 0 ? double(rows) / seconds : 0; }
    [[nodiscard]] double megabytesPerSecond() const { return seconds > 0 ? double(bytes) / 1e6 / seconds : 0; }
};

// rowsOf(record) gives the rows a page carried.
[[nodiscard]] LoadFigures figuresOf(std::string label, const LoadResult& result,
                                    const std::function<int64_t(const PageRecord&)>& rowsOf);

// The value below which share (0..1) of the values lie (nearest rank).
[[nodiscard]] double percentile(std::vector<double> values, double share);

void printFigures(const std::vector<LoadFigures>& rows);

} // namespace qf::bench
