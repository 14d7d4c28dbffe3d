#include "screens/gold_chart.h"

#include "screens/chart_ticks.h"
#include "screens/timeline_texts.h"

#include <algorithm>
#include <cmath>

namespace {

// Spans under this show at least ±half of it, so that a level game does not fill the chart with
// the noise of a few coins.
constexpr qint64 smallestSpan = 1000;
constexpr double maxMarkedSpan = 600;
// No game comes near this; a broken answer's extremes are drawn at it rather than overflow.
constexpr qint64 goldLimit = 1'000'000'000;

qint64 clampedDiff(const TimelineSummaryDto::Frame& frame) {
    return std::clamp(frame.goldDiff, -goldLimit, goldLimit);
}

} // namespace

GoldChart GoldChart::of(const QList<TimelineSummaryDto::Frame>& frames) {
    GoldChart chart;
    const auto n = static_cast<std::size_t>(frames.size());
    if (n < 2)
        return chart;

    qint64 low = 0;
    qint64 high = 0;
    for (const TimelineSummaryDto::Frame& frame : frames) {
        low = std::min(low, clampedDiff(frame));
        high = std::max(high, clampedDiff(frame));
    }
    if (high - low < smallestSpan) {
        low = std::min(low, -smallestSpan / 2);
        high = std::max(high, smallestSpan / 2);
    }
    const std::vector<qint64> amounts = ChartTicks::covering(low, high, 4);
    const double bottom = static_cast<double>(amounts.front());
    const double range = static_cast<double>(amounts.back() - amounts.front());
    const auto yOf = [&](qint64 gold) { return 1.0 - (static_cast<double>(gold) - bottom) / range; };
    chart.zeroY = yOf(0);
    for (qint64 amount : amounts)
        chart.yTicks.push_back({yOf(amount), TimelineTexts::goldThousands(amount)});

    // Computed in doubles: minutes are small, but a broken answer must not overflow.
    const double first = static_cast<double>(frames.front().t);
    const double last = static_cast<double>(frames.back().t);
    const double span = last - first;
    chart.line.reserve(n);
    for (std::size_t i = 0; i < n; ++i) {
        const TimelineSummaryDto::Frame& frame = frames[static_cast<qsizetype>(i)];
        const double x = span > 0 ? (static_cast<double>(frame.t) - first) / span
                                  : static_cast<double>(i) / static_cast<double>(n - 1);
        chart.line.emplace_back(x, yOf(clampedDiff(frame)));
    }

    // Minute marks: the finest of these steps that leaves at most seven. A span of more than ten
    // hours is not a game: it gets no marks.
    if (span <= 0 || span > maxMarkedSpan)
        return chart;
    qint64 step = 60;
    for (qint64 candidate : {1, 2, 5, 10, 15, 20, 30, 60})
        if (span / static_cast<double>(candidate) <= 6) {
            step = candidate;
            break;
        }
    for (auto minute = static_cast<qint64>(std::ceil(first / static_cast<double>(step))) * step;
         static_cast<double>(minute) <= last; minute += step)
        chart.xTicks.push_back(
            {(static_cast<double>(minute) - first) / span, QString::asprintf("%lldm", static_cast<long long>(minute))});
    return chart;
}
