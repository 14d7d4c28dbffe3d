#include "screens/archive_inputs.h"

#include <algorithm>
#include <limits>

namespace ArchiveInputs {

std::vector<const LocalMatch*> matchesNewestFirst(const ArchiveStore& store) {
    std::vector<const LocalMatch*> matches = store.matches().all();
    const auto key = [](const LocalMatch* m) {
        return m->gameCreation ? m->gameCreation->toMSecsSinceEpoch() : std::numeric_limits<qint64>::min();
    };
    std::stable_sort(matches.begin(), matches.end(), [&](const LocalMatch* a, const LocalMatch* b) { return key(a) > key(b); });
    return matches;
}

} // namespace ArchiveInputs
