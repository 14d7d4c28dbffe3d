#include "backend/social_records.h"

DuoDto DuoDto::decode(const JsonReader& in) {
    DuoDto d;
    d.puuid = in.text("puuid");
    d.riotId = in.optText("riotId");
    d.games = in.integer("games");
    d.wins = in.integer("wins");
    d.losses = in.integer("losses");
    d.winrate = in.real("winrate");
    d.lastPlayed = in.optText("lastPlayed");
    d.rank = in.optText("rank");
    d.profileIconId = in.optInteger("profileIconId");
    return d;
}

DuosResponse DuosResponse::decode(const JsonReader& in) {
    return {in.records<DuoDto>("duos")};
}
