#pragma once

#include <QString>
#include <array>
#include <optional>

// The six kinds of game the screens filter and group by, in the order they are listed.
enum class GameCategory { Ranked, Mayhem, Aram, Arena, Normal, Other };

namespace GameCategories {

inline constexpr std::array<GameCategory, 6> all = {GameCategory::Ranked, GameCategory::Mayhem, GameCategory::Aram,
                                                    GameCategory::Arena,  GameCategory::Normal, GameCategory::Other};

// The queue id decides first; only an unlisted queue falls back to the (upper-cased) mode.
[[nodiscard]] GameCategory of(qint64 queueId, const std::optional<QString>& gameMode);
// The category a queue alone decides; none for the queues whose games are told apart by mode.
[[nodiscard]] std::optional<GameCategory> ofQueue(qint64 queueId);
// The shown text, which is also the category's name: "Ranked", "Mayhem", "ARAM", …
[[nodiscard]] QString rawValue(GameCategory category);
// Exact, case-sensitive match of a shown text.
[[nodiscard]] std::optional<GameCategory> fromRawValue(const QString& text);

} // namespace GameCategories
