#include "screens/archive_inputs.h"

#include "game_data/stats.h"

#include <algorithm>
#include <limits>

namespace ArchiveInputs {

std::vector<const LocalMatch*> matchesNewestFirst(const ArchiveStore& store) {
    const std::vector<const LocalMatch*> all = store.matches().all();
    // Sort keys once: reading a date inside the comparison would redo it log n times per match.
    std::vector<std::pair<qint64, const LocalMatch*>> keyed;
    keyed.reserve(all.size());
    for (const LocalMatch* m : all)
        keyed.emplace_back(m->gameCreation ? m->gameCreation->toMSecsSinceEpoch() : std::numeric_limits<qint64>::min(),
                           m);
    std::stable_sort(keyed.begin(), keyed.end(), [](const auto& a, const auto& b) { return a.first > b.first; });
    std::vector<const LocalMatch*> matches;
    matches.reserve(keyed.size());
    for (const auto& [key, m] : keyed)
        matches.push_back(m);
    return matches;
}

std::vector<const LocalParticipant*> ownRows(const ArchiveStore& store, const QSet<QString>& owners) {
    return Stats::ownRows(store.participants().all(), owners);
}

} // namespace ArchiveInputs
