#pragma once

#include "archive/local_match.h"
#include "archive/local_participant.h"
#include "game_data/game_category.h"

#include <QColor>
#include <QDateTime>
#include <QString>

// The texts and colours the archive screens show for a game and a player's line in it.
namespace MatchTexts {

[[nodiscard]] QString result(bool win);                        // "Victory" / "Defeat"
[[nodiscard]] QString kdaRatio(const LocalParticipant& row);   // "%.2f KDA"
[[nodiscard]] QString kdaShort(const LocalParticipant& row);   // "%.1f"
[[nodiscard]] QString creepScore(const LocalParticipant& row); // "CS 187 (6.4)"
[[nodiscard]] QString damage(qint64 damageToChampions);        // "23k dmg"
[[nodiscard]] QString thousands(qint64 value);                 // "12k"
[[nodiscard]] QString minutes(qint64 gameDurationSeconds);     // "29m"
// "32m · 2 hours ago", or just "32m" without a creation date.
// "29m · 2 hours ago"; the phrase in the given ICU locale, the system's when empty.
[[nodiscard]] QString timeText(const LocalMatch& match, const QDateTime& now, const char* locale = "");
[[nodiscard]] QString categoryChip(GameCategory category); // "RANKED", …
[[nodiscard]] QColor categoryColor(GameCategory category);

} // namespace MatchTexts
