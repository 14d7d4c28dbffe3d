// Building the sync benchmarks' archive.

#include "bench_archive.h"

#include "archive/champion_catalog.h"
#include "auth/session_tokens.h"
#include "bench_random.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <stdexcept>

namespace qf::bench {

namespace {

constexpr int64_t kMinute = 60'000;
constexpr int64_t kSessionLifetime = 30LL * 24 * 60 * kMinute;
constexpr std::array<const char*, 5> kPositions{"TOP", "JUNGLE", "MIDDLE", "BOTTOM", "UTILITY"};
constexpr std::array<const char*, 6> kTiers{"IRON", "BRONZE", "SILVER", "GOLD", "PLATINUM", "EMERALD"};
constexpr std::array<const char*, 4> kDivisions{"I", "II", "III", "IV"};

// A puuid of the Riot API's length (78 characters of URL-safe Base64).
std::string puuidFor(int index, BenchRandom& random) {
    static constexpr char alphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_";
    std::string puuid = "bench" + std::to_string(index) + "-";
    while (puuid.size() < 78)
        puuid += alphabet[random.next() % 64];
    return puuid;
}

Participant makeRow(const RiotAccount& account, int seat, bool blueWon, int64_t durationSeconds,
                    const ChampionCatalog& champions, BenchRandom& random) {
    Participant p;
    p.puuid = account.puuid;
    p.riotIdGameName = account.gameName;
    p.riotIdTagLine = account.tagLine;
    p.teamId = seat < 5 ? 100 : 200;
    p.win = (seat < 5) == blueWon;
    p.championId = random.between(1, 45);
    p.championName = champions.nameOf(p.championId);
    p.teamPosition = kPositions[size_t(seat % 5)];
    p.champLevel = random.between(9, 18);
    p.kills = random.between(0, 14);
    p.deaths = random.between(0, 12);
    p.assists = random.between(0, 20);
    p.totalCs = seat % 5 == 4 ? random.between(10, 60) : random.between(120, 280);
    p.goldEarned = random.between(6000, 17000);
    p.visionScore = random.between(5, 80);
    p.damageToChampions = random.between(4000, 40000);
    for (int slot = 0; slot < 7; ++slot)
        p.items.push_back(random.chance(0.15) ? 0 : random.between(1001, 6700));
    p.csPerMin = double(p.totalCs) / (double(durationSeconds) / 60.0);
    if (random.chance(0.7)) {
        p.rankTier = kTiers[size_t(random.between(0, kTiers.size() - 1))];
        p.rankDivision = kDivisions[size_t(random.between(0, kDivisions.size() - 1))];
        p.rankLp = random.between(0, 99);
    }
    p.profileIconId = account.profileIconId;
    return p;
}

// Team shares are filled in once all ten rows exist.
void fillTeamFigures(std::vector<Participant>& rows) {
    for (int team : {100, 200}) {
        int64_t damage = 0;
        int64_t kills = 0;
        for (const Participant& p : rows)
            if (p.teamId == team) {
                damage += p.damageToChampions;
                kills += p.kills;
            }
        for (Participant& p : rows)
            if (p.teamId == team) {
                p.teamDamagePct = damage > 0 ? double(p.damageToChampions) / double(damage) : 0.0;
                p.killParticipation = kills > 0 ? double(p.kills + p.assists) / double(kills) : 0.0;
            }
    }
}

PerformanceScore makeScore(const RiotAccount& account, const Participant& row, BenchRandom& random) {
    PerformanceScore s;
    s.riotAccountId = account.id;
    s.matchId = row.matchId;
    s.championId = row.championId;
    s.teamPosition = row.teamPosition;
    s.score = std::round(random.unit() * 1000.0) / 10.0;
    for (const char* name : {"kda", "kill_participation", "cs_per_min", "vision_per_min", "damage_share"})
        s.components.emplace_back(name, std::round((random.unit() * 4.0 - 2.0) * 1000.0) / 1000.0);
    s.baselineKind = "self";
    return s;
}

} // namespace

BenchArchive buildBenchArchive(Database& database, const BenchArchiveShape& shape, int64_t now) {
    if (shape.users <= 0 || shape.playersPerGame <= 0 || shape.playersPerGame > 10 ||
        shape.users % shape.playersPerGame != 0 || shape.games <= 0 || shape.gamesPerTransaction <= 0)
        throw std::invalid_argument("the players of a game must divide the users, at most 10 a game");
    const int gamesPerRound = shape.users / shape.playersPerGame;
    if (shape.games % gamesPerRound != 0)
        throw std::invalid_argument("the games must be a whole number of rounds of " + std::to_string(gamesPerRound));

    BenchRandom random(shape.seed);
    const ChampionCatalog& champions = ChampionCatalog::shipped();
    BenchArchive out;
    out.gamesPerUser = int64_t(shape.games) / gamesPerRound;
    std::vector<RiotAccount> accounts;

    database.write([&](Repository& repository) {
        for (int u = 0; u < shape.users; ++u) {
            User user;
            user.email = "bench" + std::to_string(u) + "@example.invalid";
            user.emailKey = user.email;
            user.name = "Bench " + std::to_string(u);
            user.createdAt = now;
            repository.insertUser(user);

            RiotAccount account;
            account.userId = user.id;
            account.puuid = puuidFor(u, random);
            account.gameName = "Bench Player " + std::to_string(u);
            account.tagLine = "EUW";
            account.platform = "euw1";
            account.region = "europe";
            account.isOwner = true;
            account.profileIconId = random.between(1, 5000);
            account.summonerLevel = random.between(30, 600);
            account.linkedAt = now;
            repository.insertAccount(account);
            accounts.push_back(account);

            Player player;
            player.puuid = account.puuid;
            player.gameName = *account.gameName;
            player.tagLine = *account.tagLine;
            player.nameKey = "bench player " + std::to_string(u);
            player.tagKey = "euw";
            player.platform = account.platform;
            player.profileIconId = account.profileIconId;
            player.lastSeen = now;
            repository.upsertPlayer(player);

            BenchUser bench{user.id, account.id, account.puuid, newSessionToken()};
            repository.insertToken(sessionTokenHash(bench.token), user.id, now + kSessionLifetime);
            out.users.push_back(std::move(bench));
        }
    });

    // Rounds: every account plays exactly once a round, its seat and fellow players shuffled.
    std::vector<int> order(size_t(shape.users));
    for (int i = 0; i < shape.users; ++i)
        order[size_t(i)] = i;
    const int64_t firstGame = now - int64_t(shape.games) * 2 * kMinute;
    for (int g = 0; g < shape.games;) {
        const int end = std::min(shape.games, g + shape.gamesPerTransaction);
        database.write([&](Repository& repository) {
            for (; g < end; ++g) {
                if (g % gamesPerRound == 0)
                    for (size_t i = order.size() - 1; i > 0; --i)
                        std::swap(order[i], order[random.next() % (i + 1)]);
                const int slot = g % gamesPerRound;

                Match match;
                match.matchId = "EUW1_" + std::to_string(7'000'000'000LL + g);
                match.platform = "EUW1";
                match.queueId = random.chance(0.8) ? 420 : 400;
                match.isRanked = match.queueId == 420;
                match.gameCreation = firstGame + int64_t(g) * 2 * kMinute;
                match.gameDuration = random.between(900, 2400);
                match.gameVersion = "14.3.556.123";
                match.gameMode = "CLASSIC";
                match.season = 14;
                match.updatedAt = now;
                repository.insertMatch(match);

                const bool blueWon = random.chance(0.5);
                std::vector<Participant> rows;
                std::vector<const RiotAccount*> players;
                for (int seat = 0; seat < shape.playersPerGame; ++seat) {
                    const RiotAccount& account = accounts[size_t(order[size_t(slot * shape.playersPerGame + seat)])];
                    players.push_back(&account);
                    rows.push_back(makeRow(account, seat, blueWon, match.gameDuration, champions, random));
                }
                fillTeamFigures(rows);
                repository.replaceParticipants(match, rows);
                for (size_t i = 0; i < rows.size(); ++i) {
                    PerformanceScore score = makeScore(*players[i], rows[i], random);
                    repository.insertScore(score);
                }
                ++out.games;
                out.participants += int64_t(rows.size());
                out.scores += int64_t(rows.size());
            }
        });
    }
    return out;
}

} // namespace qf::bench
