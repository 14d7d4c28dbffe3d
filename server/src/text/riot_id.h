#pragma once

#include <optional>
#include <string>
#include <string_view>

// Riot IDs ("Name#TAG"): split as Riot does, at the last "#", and compared the way Riot compares
// them: without regard to case, in every script (full Unicode case folding, not ASCII lowering).

namespace qf {

struct RiotId {
    std::string gameName;
    std::string tagLine;

    [[nodiscard]] std::string text() const { return gameName + "#" + tagLine; }
};

// Trims spaces around the whole and each part; nullopt unless both parts are non-empty, valid
// UTF-8 and of a plausible length.
[[nodiscard]] std::optional<RiotId> parseRiotId(std::string_view text);

// The folded form of a name or tag, for look-ups (UTF-8 in, UTF-8 out; invalid input folds to "").
[[nodiscard]] std::string foldRiotIdPart(std::string_view part);

} // namespace qf
