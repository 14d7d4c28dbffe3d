#pragma once

#include "backend/timeline_records.h"

#include <QString>
#include <optional>

// The texts the timeline screen shows for the numbers and events of a timeline summary.
namespace TimelineTexts {

// Gold in thousands with its sign: 1260 → "+1.3k", -800 → "-0.8k", 0 → "+0.0k", -1 → "-0.0k".
[[nodiscard]] QString goldThousands(qint64 gold);
// Seconds from the start of the game as minutes and seconds: 65 → "1:05", 600 → "10:00".
[[nodiscard]] QString clock(qint64 seconds);
// "Top", "Mid", "Bot"; empty for any other lane or none.
[[nodiscard]] QString laneName(const std::optional<QString>& lane);
// A dragon's name from its type: "HEXTECH_DRAGON" → "Hextech", "AIR_DRAGON" → "Air".
[[nodiscard]] QString dragonName(const QString& subtype);
// The symbol name of an event's kind (and monster).
[[nodiscard]] QString eventSymbol(const TimelineSummaryDto::Event& event);
// "Ahri killed Zed", "Fire Dragon — your team", "Inhibitor (Bot) — enemy"; empty for a kind the
// screen does not know.
[[nodiscard]] QString eventLabel(const TimelineSummaryDto::Event& event);
// "First blood for your team at 3:05 — Ahri → Zed".
[[nodiscard]] QString firstBlood(const TimelineSummaryDto::FirstBlood& firstBlood);

} // namespace TimelineTexts
