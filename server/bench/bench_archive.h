#pragma once

#include "store/database.h"

#include <cstdint>
#include <string>
#include <vector>

// The archive the sync benchmarks serve: users, each with one linked Riot account, and games in
// which every player is one of those accounts, each with a performance score per player.
// Written straight through the Repository in a few large write transactions, the same way on
// both engines, so the two serve the same rows.

namespace qf::bench {

struct BenchArchiveShape {
    int users = 100;
    int games = 20000;
    int playersPerGame = 10; // must divide users
    int gamesPerTransaction = 2000;
    uint64_t seed = 20240601;
};

struct BenchUser {
    int64_t userId = 0;
    int64_t accountId = 0;
    std::string puuid;
    std::string token; // a session token ready for "Authorization: Bearer …"
};

struct BenchArchive {
    std::vector<BenchUser> users;
    int64_t games = 0;
    int64_t participants = 0;
    int64_t scores = 0;
    // Every user's archive holds this many games (and ten times as many participant rows).
    int64_t gamesPerUser = 0;
};

// Fills an empty, migrated database. Throws std::invalid_argument for a shape that cannot give
// every account the same number of games.
BenchArchive buildBenchArchive(Database& database, const BenchArchiveShape& shape, int64_t now);

} // namespace qf::bench
