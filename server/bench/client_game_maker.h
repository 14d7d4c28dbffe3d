#pragma once

#include "bench_random.h"

#include <cstdint>
#include <string>
#include <vector>

// League client games for the ingest benchmark, in the shape the client's match history
// answers in (the retired match-v4 web API's, with puuid, gameName and tagLine added to each
// player): every member a real client game carries, so reading one costs what it costs in use.
// One player, the uploader, is in every game; the others come from a pool, as friends and
// strangers do.

namespace qf::bench {

class ClientGameMaker {
public:
    ClientGameMaker(uint64_t seed, std::string ownPuuid, int poolSize = 500);

    // An upload body as the app sends it: {"games": [...]} with count games numbered from
    // firstGameId, started two minutes apart from firstCreation (Unix ms).
    [[nodiscard]] std::string batch(int64_t firstGameId, int count, int64_t firstCreation);

    // The League client's puuid form (a UUID).
    [[nodiscard]] static std::string uuidPuuid(BenchRandom& random);

private:
    struct Person {
        std::string puuid;
        std::string name;
        int64_t icon = 0;
    };

    std::string m_json;
    BenchRandom m_random;
    Person m_own;
    std::vector<Person> m_pool;

    void writeGame(int64_t gameId, int64_t creation);
};

} // namespace qf::bench
