#pragma once

#include <QtGlobal>
#include <vector>

namespace ChartTicks {

// Round tick values covering [low, high], about `wanted` of them, lowest first: steps of 1, 2,
// 2.5 or 5 times a power of ten.
[[nodiscard]] std::vector<qint64> covering(qint64 low, qint64 high, int wanted);

} // namespace ChartTicks
