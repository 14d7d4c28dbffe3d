#pragma once

#include "backend/timeline_records.h"

#include <QPointF>
#include <QString>
#include <vector>

// The team gold difference of a timeline, minute by minute, laid out in a unit square (x to the
// right, y downwards) so that the view only scales it to its own size.
struct GoldChart {
    struct Tick {
        double at = 0; // x or y in the unit square
        QString text;  // "15m", "+1.3k"
    };

    std::vector<QPointF> line; // one point per frame, in frame order
    double zeroY = 0;          // where a difference of 0 lies
    std::vector<Tick> xTicks;  // whole minutes
    std::vector<Tick> yTicks;  // round amounts of gold, always including 0

    // A line needs two frames: with fewer, the chart is empty.
    [[nodiscard]] bool isEmpty() const { return line.size() < 2; }

    [[nodiscard]] static GoldChart of(const QList<TimelineSummaryDto::Frame>& frames);
};
