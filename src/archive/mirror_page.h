#pragma once

#include "archive/local_participant.h"
#include "backend/archive_records.h"

// One page of the archive pull as the mirror stores it: the player rows already in the store's
// own form. The few other records stay the backend's, as their updates depend on what the
// backend left out.
using MirrorPage = ArchivePage<LocalParticipant>;
