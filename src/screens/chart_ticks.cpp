#include "screens/chart_ticks.h"

#include <algorithm>
#include <cmath>

namespace ChartTicks {

std::vector<qint64> covering(qint64 low, qint64 high, int wanted) {
    if (high < low)
        std::swap(low, high);
    const double raw = std::max<double>(static_cast<double>(high - low), 1.0) / std::max(wanted, 1);
    const double magnitude = std::pow(10.0, std::floor(std::log10(raw)));
    double step = 10 * magnitude;
    for (double factor : {1.0, 2.0, 2.5, 5.0})
        if (factor * magnitude >= raw) {
            step = factor * magnitude;
            break;
        }
    const qint64 whole = std::max<qint64>(1, std::llround(step));
    qint64 first = static_cast<qint64>(std::floor(static_cast<double>(low) / whole)) * whole;
    qint64 last = static_cast<qint64>(std::ceil(static_cast<double>(high) / whole)) * whole;
    if (first == last)
        last += whole;
    std::vector<qint64> ticks;
    for (qint64 v = first; v <= last; v += whole)
        ticks.push_back(v);
    return ticks;
}

} // namespace ChartTicks
