#pragma once

#include "archive/archive_store.h"

#include <vector>

// The store's contents in the shapes the screens ask for.
namespace ArchiveInputs {

// Every stored match, newest first; matches without a creation date come last.
[[nodiscard]] std::vector<const LocalMatch*> matchesNewestFirst(const ArchiveStore& store);
// The user's own rows.
[[nodiscard]] std::vector<const LocalParticipant*> ownRows(const ArchiveStore& store, const QSet<QString>& owners);

} // namespace ArchiveInputs
