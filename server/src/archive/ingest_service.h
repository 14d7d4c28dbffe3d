#pragma once

#include "archive/champion_catalog.h"
#include "archive/champion_directory.h"
#include "archive/lcu_game_reader.h"
#include "store/database.h"
#include "json/json_input.h"

#include <string>
#include <vector>

// Stores games read from a League client or the Riot API, one player under one puuid whichever
// source named them, and keeps every linked account's performance scores
// up to date with them.

namespace qf {

struct IngestOutcome {
    int64_t ingested = 0;              // games stored new or changed
    int64_t skipped = 0;               // games unreadable, or already stored unchanged
    std::vector<std::string> matchIds; // Riot match ids of the games stored ("EUW1_7123456789")
};

class IngestService {
public:
    // Champion names from one fixed list (the demo, tests).
    IngestService(Database& database, const ChampionCatalog& champions);
    // Champion names from the directory's list of the moment, so a list fetched later is used
    // from the next batch on.
    IngestService(Database& database, const ChampionDirectory& champions);

    // games: a JSON array of game objects. One write transaction: the whole batch or none.
    // Throws HttpError 400 when games is not an array.
    // uploader: the puuids of the uploading user's linked accounts. When given, a game already
    // stored is changed only by a user who played in it: anyone may add a game the server has
    // not seen, but nobody can rewrite the figures of somebody else's. (The server cannot check
    // what a League client says; this keeps the harm one account can do to its own games.)
    IngestOutcome ingest(json::Element games, int64_t now, const std::vector<std::string>* uploader = nullptr);

    // Games read already (the Riot API's, through readRiotMatch), stored the same way in one
    // write transaction, by no uploader: a game stored already changes only when it differs.
    IngestOutcome ingestGames(std::vector<ClientGame> games, int64_t now);
    // One match-v5 game as the Riot API answers it; nothing when it is not a readable game.
    IngestOutcome ingestRiotMatch(json::Element match, int64_t now);
    // Scores every game of the account that has none yet, oldest first (after a link).
    static void scoreAccount(Repository& repository, const RiotAccount& account);

private:
    IngestOutcome store(std::vector<ClientGame>& batch, const IngestOutcome& outcome, int64_t now,
                        const std::vector<std::string>* uploader);

    Database& m_database;
    const ChampionCatalog* m_fixed = nullptr;
    const ChampionDirectory* m_directory = nullptr;
};

} // namespace qf
