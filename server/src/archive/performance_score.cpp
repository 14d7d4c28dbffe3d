// Scores a game against the player's own recent games in the same position.

#include "archive/performance_score.h"

#include <algorithm>
#include <cmath>
#include <optional>

namespace qf {

namespace {

// Earlier games looked at, and how many a comparison needs before it means anything.
constexpr size_t historyDepth = 20;
constexpr size_t minimumHistory = 3;
// Points per standard deviation away from the player's mean.
constexpr double pointsPerDeviation = 15.0;

std::optional<double> perMinute(double amount, int64_t durationSeconds) {
    if (durationSeconds <= 0)
        return std::nullopt;
    return amount / (double(durationSeconds) / 60.0);
}

std::optional<double> kda(const OwnGame& g) {
    const double takedowns = double(g.me.kills + g.me.assists);
    return g.me.deaths > 0 ? takedowns / double(g.me.deaths) : takedowns;
}
std::optional<double> killParticipation(const OwnGame& g) {
    return g.me.killParticipation;
}
std::optional<double> csPerMin(const OwnGame& g) {
    return g.me.csPerMin ? g.me.csPerMin : perMinute(double(g.me.totalCs), g.match.gameDuration);
}
std::optional<double> visionPerMin(const OwnGame& g) {
    return perMinute(double(g.me.visionScore), g.match.gameDuration);
}
std::optional<double> damageShare(const OwnGame& g) {
    return g.me.teamDamagePct;
}

struct Component {
    const char* key;
    // The smallest spread a comparison assumes: a player whose games are all alike would
    // otherwise score 0 or 100 for a hair's difference.
    double floor;
    std::optional<double> (*value)(const OwnGame&);
};

constexpr Component components[] = {
    {"kda", 0.5, kda},
    {"kill_participation", 0.05, killParticipation},
    {"cs_per_min", 0.5, csPerMin},
    {"vision_per_min", 0.1, visionPerMin},
    {"damage_share", 0.03, damageShare},
};

double oneDecimal(double value) {
    return std::round(value * 10.0) / 10.0;
}

double componentScore(const Component& component, const OwnGame& game, const std::vector<const OwnGame*>& history) {
    const std::optional<double> x = component.value(game);
    std::vector<double> sample;
    for (const OwnGame* earlier : history)
        if (const auto value = component.value(*earlier); value && std::isfinite(*value))
            sample.push_back(*value);
    if (!x || !std::isfinite(*x) || sample.size() < minimumHistory)
        return 50.0;
    double mean = 0;
    for (const double v : sample)
        mean += v;
    mean /= double(sample.size());
    double variance = 0;
    for (const double v : sample)
        variance += (v - mean) * (v - mean);
    variance /= double(sample.size());
    const double z = (*x - mean) / std::max(std::sqrt(variance), component.floor);
    return oneDecimal(std::clamp(50.0 + pointsPerDeviation * z, 0.0, 100.0));
}

} // namespace

PerformanceScore scoreGame(const OwnGame& game, const std::vector<OwnGame>& history, int64_t riotAccountId) {
    // Only games before this one, in the same position, count, whatever the caller passed: a
    // score must not move when later games arrive.
    std::vector<const OwnGame*> earlier;
    for (const OwnGame& g : history)
        if (g.match.gameCreation < game.match.gameCreation && g.match.id != game.match.id &&
            g.me.teamPosition == game.me.teamPosition)
            earlier.push_back(&g);
    std::stable_sort(earlier.begin(), earlier.end(),
                     [](const OwnGame* a, const OwnGame* b) { return a->match.gameCreation > b->match.gameCreation; });
    if (earlier.size() > historyDepth)
        earlier.resize(historyDepth);

    PerformanceScore score;
    score.riotAccountId = riotAccountId;
    score.matchId = game.match.id;
    score.championId = game.me.championId;
    score.teamPosition = game.me.teamPosition;
    score.baselineKind = "self";
    double sum = 0;
    for (const Component& component : components) {
        const double value = componentScore(component, game, earlier);
        score.components.emplace_back(component.key, value);
        sum += value;
    }
    score.score = oneDecimal(sum / double(std::size(components)));
    return score;
}

} // namespace qf
