#pragma once

#include "archive/ingest_service.h"
#include "store/database.h"

#include <string>

// The demo: one account with two linked Riot accounts and a few hundred realistic games, so a
// new user sees every screen filled. Made once; a second start finds it and leaves it alone.

namespace qf {

struct DemoCredentials {
    static constexpr const char* email = "demo@quillfern.local";
    static constexpr const char* password = "quillfern-demo";
};

struct DemoSummary {
    bool created = false; // false when the demo account was there already
    int64_t games = 0;    // games handed to the ingest
    int64_t ingested = 0; // of those, stored by it
    int64_t skipped = 0;
    int64_t snapshots = 0;
    int64_t timelines = 0;
};

// Feeds the demo's games through ingest, then, in one transaction, creates the demo user, links
// its accounts (which scores their games), and adds rank snapshots and timelines. The user is
// the last thing to appear, so a start that dies half-way is completed by the next one, and a
// demo user always comes with its whole archive. Idempotent; safe for several servers starting
// together on one database.
DemoSummary installDemo(Database& database, IngestService& ingest, int64_t now);

} // namespace qf
