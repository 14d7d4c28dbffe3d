#pragma once

#include "store/records.h"
#include "json/json_writer.h"

#include <string>
#include <vector>

// A participant row as the app's archive sync reads it (snake_case keys). The store keeps each
// game's rows in this form beside the columns, so a sync page copies text instead of turning
// thousands of rows into JSON on every pull.

namespace qf {

void writeParticipantJson(json::Writer& writer, const Participant& participant);

// The game's participant objects joined by commas, without brackets: pages splice several
// games' lists into one array. Empty for no rows.
[[nodiscard]] std::string participantListJson(const std::vector<Participant>& participants);

} // namespace qf
