// Turning load runs into figures and a table.

#include "load_figures.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace qf::bench {

double percentile(std::vector<double> values, double share) {
    if (values.empty())
        return 0;
    std::sort(values.begin(), values.end());
    const size_t rank = size_t(std::ceil(share * double(values.size())));
    return values[std::clamp<size_t>(rank, 1, values.size()) - 1];
}

LoadFigures figuresOf(std::string label, const LoadResult& result,
                      const std::function<int64_t(const PageRecord&)>& rowsOf) {
    LoadFigures f;
    f.label = std::move(label);
    f.seconds = result.seconds;
    f.clientCpuSeconds = result.clientCpuSeconds;
    std::vector<double> times;
    for (const PageRecord& page : result.pages) {
        ++f.pages;
        f.rows += rowsOf(page);
        f.bytes += int64_t(page.bytes);
        times.push_back(page.seconds * 1000.0);
    }
    f.p50Ms = percentile(times, 0.50);
    f.p99Ms = percentile(times, 0.99);
    return f;
}

void printFigures(const std::vector<LoadFigures>& rows) {
    // "client" is the load client's CPU time over the run's wall time: near 100 % means the
    // client, not the server, set the pace. "cpu/page" is the serving side's CPU time per page,
    // which a busy shared machine changes far less than it changes the rates.
    std::printf("%-30s %6s %9s %7s %6s %8s %10s %7s %8s %8s %7s %9s\n", "", "pages", "rows", "MB", "s", "pages/s",
                "rows/s", "MB/s", "p50 ms", "p99 ms", "client", "cpu/page");
    for (const LoadFigures& f : rows)
        std::printf("%-30s %6lld %9lld %7.1f %6.2f %8.1f %10.0f %7.1f %8.1f %8.1f %6.0f%% %6.2f ms\n", f.label.c_str(),
                    static_cast<long long>(f.pages), static_cast<long long>(f.rows), double(f.bytes) / 1e6, f.seconds,
                    f.pagesPerSecond(), f.rowsPerSecond(), f.megabytesPerSecond(), f.p50Ms, f.p99Ms,
                    f.seconds > 0 ? 100.0 * f.clientCpuSeconds / f.seconds : 0.0,
                    f.pages > 0 ? 1000.0 * f.serverCpuSeconds / double(f.pages) : 0.0);
    std::fflush(stdout);
}

} // namespace qf::bench
