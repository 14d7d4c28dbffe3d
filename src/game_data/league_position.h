#pragma once

#include <QString>
#include <optional>

namespace LeaguePosition {

// "Top", "Jungle", "Mid", "Bot", "Support"; an em dash for anything else.
[[nodiscard]] QString shortLabel(const std::optional<QString>& position);

} // namespace LeaguePosition
