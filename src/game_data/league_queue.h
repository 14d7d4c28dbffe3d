#pragma once

#include <QString>
#include <optional>

namespace LeagueQueue {

// The queue's name as players know it ("Ranked Solo/Duo", "ARAM: Mayhem", "Queue 0", …).
[[nodiscard]] QString label(qint64 queueId, const std::optional<QString>& gameMode);

} // namespace LeagueQueue
