#pragma once

#include "backend/timeline_records.h"
#include "screens/gold_chart.h"

#include <QColor>
#include <QString>
#include <optional>
#include <vector>

// Everything the timeline screen shows of one timeline summary, worked out at once.
struct TimelineViewState {
    // A figure of the "Your game" card: "CS @10" with "81" in gold, "Gold @10" with "-0.8k" in red.
    struct Figure {
        QString label;
        QString value;
        QColor color;
    };
    // An objective of the card: the count of each side.
    struct Objective {
        QString label;
        qint64 mine = 0;
        qint64 enemy = 0;
    };
    struct EventRow {
        QString time;   // "1:05"
        QString symbol; // symbol name
        QString label;  // "Hextech Dragon — your team"
        bool mine = false;
    };

    std::vector<Figure> figures;       // CS @10, CS @14, Gold @10, Gold @14, Peak lead, Worst gap
    std::vector<Objective> objectives; // Dragons, Towers
    std::optional<QString> firstBlood; // the whole line; none without a first blood
    bool firstBloodMine = false;
    GoldChart chart;
    std::vector<EventRow> events; // as received: no filtering, no sorting

    [[nodiscard]] static TimelineViewState of(const TimelineSummaryDto& summary);
    // The text and colour of one figure; an absent value reads "–" in the secondary colour.
    [[nodiscard]] static Figure creepScore(const QString& label, const std::optional<qint64>& value);
    [[nodiscard]] static Figure goldDifference(const QString& label, const std::optional<qint64>& value);
    [[nodiscard]] static Figure goldInColor(const QString& label, const std::optional<qint64>& value,
                                            const QColor& color);
};
