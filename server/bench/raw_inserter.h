#pragma once

#include "store/records.h"

#include <memory>
#include <string>
#include <vector>

// The floor the ingest path is measured against: the same match and participant rows written
// with nothing but prepared INSERTs, one transaction a batch, through the engine's own C
// library (sqlite3, libpq) into the server's schema. No reading, no comparing, no scoring.

namespace qf::bench {

class RawInserter {
public:
    // address: an SQLite file or a postgresql:// URI of a database already migrated.
    static std::unique_ptr<RawInserter> open(const std::string& address);
    virtual ~RawInserter() = default;

    // Inserts the games, numbering them from a counter of its own. Throws std::runtime_error.
    virtual void insertBatch(const std::vector<GameRecord>& games) = 0;
};

} // namespace qf::bench
