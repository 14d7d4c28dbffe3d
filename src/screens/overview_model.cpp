#include "screens/overview_model.h"

#include "game_data/league_position.h"
#include "game_data/rank_math.h"
#include "screens/archive_inputs.h"
#include "theme/theme.h"

#include <QVariantMap>
#include <algorithm>
#include <cmath>
#include <limits>

namespace {

QVariantMap pill(const QString& text, const QColor& tint) {
    return {{"text", text}, {"tint", tint}};
}

// The newest solo-queue snapshot; none when there is none.
const LocalRankSnapshot* newestSolo(const ArchiveStore& store) {
    const LocalRankSnapshot* best = nullptr;
    qint64 bestTime = std::numeric_limits<qint64>::min();
    for (const LocalRankSnapshot* snapshot : store.rankSnapshots().all()) {
        if (snapshot->queue != QLatin1String("RANKED_SOLO_5x5"))
            continue;
        const qint64 time =
            snapshot->capturedAt ? snapshot->capturedAt->toMSecsSinceEpoch() : std::numeric_limits<qint64>::min();
        if (!best || time > bestTime) {
            best = snapshot;
            bestTime = time;
        }
    }
    return best;
}

} // namespace

OverviewModel::OverviewModel(QObject* parent) : ScreenModel(parent), m_recent(new MatchListModel(this)) {}

OverviewModel::Streak OverviewModel::streakOf(const std::vector<Stats::TimelineEntry>& timeline) {
    Streak streak;
    if (timeline.empty())
        return streak;
    streak.winning = timeline.front().me->win;
    for (const Stats::TimelineEntry& entry : timeline) {
        if (entry.me->win != streak.winning)
            break;
        ++streak.length;
    }
    return streak;
}

QString OverviewModel::streakPill(const Streak& streak) {
    if (streak.length < 2)
        return {};
    return streak.winning ? QStringLiteral("▲ %1W streak").arg(streak.length)
                          : QStringLiteral("▼ %1L streak").arg(streak.length);
}

std::optional<QString> OverviewModel::topRoleOf(const std::vector<Stats::TimelineEntry>& timeline) {
    // A handful of positions, each a shared text: a short list of their numbers beats hashing.
    struct Count {
        SharedText text;
        int count;
    };
    std::vector<Count> counts;
    std::size_t best = 0;
    int bestCount = 0;
    for (const Stats::TimelineEntry& entry : timeline) {
        const SharedText position = entry.me->teamPosition;
        if (position.isNull())
            continue;
        std::size_t k = 0;
        while (k < counts.size() && counts[k].text != position)
            ++k;
        if (k == counts.size())
            counts.push_back({position, 0});
        if (++counts[k].count > bestCount) {
            bestCount = counts[k].count;
            best = k;
        }
    }
    if (bestCount == 0)
        return std::nullopt;
    return LeaguePosition::shortLabel(counts[best].text.toOptional()) + QStringLiteral(" Main");
}

double OverviewModel::ringPercent(qint64 wins, qint64 losses) {
    return double(wins) / double(std::max<qint64>(wins + losses, 1)) * 100.0;
}

void OverviewModel::recompute() {
    std::vector<Stats::TimelineEntry> timeline;
    std::vector<Stats::ChampAgg> champs;
    std::vector<Stats::Game> games;
    const QSet<QString> owners = this->owners();
    if (store() && !owners.isEmpty()) {
        std::vector<const LocalParticipant*> ownRows;
        games = Stats::games(ArchiveInputs::matchesNewestFirst(*store()), store()->participants().all(), owners,
                             appState() ? appState()->friendGameNames() : QSet<QString>(), &ownRows);
        // A game's own row is the first row of the user in it, as in the timeline: the timeline is
        // the games' (match, own row) pairs, so a second pass over every row would find the same.
        timeline.reserve(games.size());
        for (const Stats::Game& game : games)
            timeline.push_back({game.match, game.me});
        champs = Stats::champions(ownRows);
    }

    m_isEmpty = timeline.empty();
    const bool hasAccounts = appState() && !appState()->riotAccounts().isEmpty();
    m_emptyMessage = hasAccounts ? QStringLiteral("Syncing your history… hit Sync if nothing appears.")
                                 : QStringLiteral("Link a Riot account above to get started.");
    computeHero(timeline, champs);
    computeRank(timeline, games);
    computeStatCards(timeline);
    computeForm(timeline);
    computeTopChampions(champs);

    m_recent->setNow(QDateTime::currentDateTimeUtc());
    m_recent->setGames(std::vector<Stats::Game>(games.begin(), games.begin() + std::min<std::size_t>(5, games.size())));
    Q_EMIT changed();
}

void OverviewModel::computeHero(const std::vector<Stats::TimelineEntry>& timeline,
                                const std::vector<Stats::ChampAgg>& champs) {
    const QList<RiotAccountDto> accounts = appState() ? appState()->riotAccounts() : QList<RiotAccountDto>();
    const RiotAccountDto* first = accounts.isEmpty() ? nullptr : &accounts.first();
    m_heroName = first && first->gameName ? *first->gameName : QStringLiteral("Summoner");
    m_heroTag = first && first->tagLine ? QStringLiteral("#") + *first->tagLine : QString();
    m_heroIconId = first && first->profileIconId ? int(*first->profileIconId) : -1;
    m_heroChampion = champs.empty() ? QString() : champs.front().name;

    m_pills.clear();
    const Streak streak = streakOf(timeline);
    if (const QString text = streakPill(streak); !text.isEmpty())
        m_pills.append(pill(text, streak.winning ? Theme::win() : Theme::loss()));
    if (const auto role = topRoleOf(timeline))
        m_pills.append(pill(*role, Theme::gold()));
    m_pills.append(pill(QString::number(timeline.size()) + QStringLiteral(" games tracked"), Theme::textSecondary()));
}

void OverviewModel::computeRank(const std::vector<Stats::TimelineEntry>& timeline,
                                const std::vector<Stats::Game>& games) {
    const LocalRankSnapshot* solo = store() ? newestSolo(*store()) : nullptr;
    m_hasRank = solo != nullptr;
    m_rankTier = solo ? solo->tier.value_or(QString()) : QString();
    m_rankLabel = solo ? RankMath::label(solo->tier, solo->division) : QString();
    m_rankLpText = solo ? QString::asprintf("%lld LP", static_cast<long long>(solo->lp)) : QString();
    m_rankGamesText =
        solo ? QString::asprintf("%lld ranked games", static_cast<long long>(solo->wins + solo->losses)) : QString();

    if (solo && solo->wins + solo->losses > 0) {
        m_rankedRing = ringPercent(solo->wins, solo->losses);
    } else {
        const auto wins = std::count_if(timeline.begin(), timeline.end(), [](const auto& e) { return e.me->win; });
        m_rankedRing = ringPercent(wins, qint64(timeline.size()) - wins);
    }
    qint64 bonusWins = 0, bonusGames = 0;
    for (const Stats::Game& game : games) {
        const GameCategory category = game.category();
        if (category == GameCategory::Ranked || category == GameCategory::Normal)
            continue;
        ++bonusGames;
        bonusWins += game.me->win ? 1 : 0;
    }
    m_bonusRing = ringPercent(bonusWins, bonusGames - bonusWins);
}

void OverviewModel::computeStatCards(const std::vector<Stats::TimelineEntry>& timeline) {
    m_statCards.clear();
    if (timeline.empty())
        return;
    double kdaSum = 0, csSum = 0, visionSum = 0;
    int csCount = 0;
    for (const Stats::TimelineEntry& entry : timeline) {
        kdaSum += Stats::kdaRatio(*entry.me);
        if (entry.me->csPerMin) {
            csSum += *entry.me->csPerMin;
            ++csCount;
        }
        const double minutes = double(entry.match->gameDuration) / 60.0;
        if (entry.match->gameDuration >= 1)
            visionSum += double(entry.me->visionScore) / minutes;
    }
    const double n = double(timeline.size());
    const double kda = kdaSum / n;
    const double cs = csCount > 0 ? csSum / csCount : 0.0;
    const double vision = visionSum / n;
    const Streak streak = streakOf(timeline);
    const auto card = [this](const QString& title, const QString& value, const QString& unit, double meter,
                             const QColor& tint) {
        m_statCards.append(
            QVariantMap{{"title", title}, {"value", value}, {"unit", unit}, {"meter", meter}, {"tint", tint}});
    };
    card(QStringLiteral("KDA Ratio"), QString::asprintf("%.2f", kda), QString(), std::min(kda / 6 * 100, 100.0),
         Theme::teal());
    card(QStringLiteral("CS / Min"), QString::asprintf("%.1f", cs), QStringLiteral("/ min"),
         std::min(cs / 10 * 100, 100.0), Theme::gold());
    card(QStringLiteral("Vision / Min"), QString::asprintf("%.2f", vision), QStringLiteral("/ min"),
         std::min(vision * 0.5 * 100, 100.0), Theme::purple());
    card(streak.winning ? QStringLiteral("Win Streak") : QStringLiteral("Streak"), QString::number(streak.length),
         streak.winning ? QStringLiteral("wins") : QStringLiteral("losses"), std::min(streak.length * 20.0, 100.0),
         streak.winning ? Theme::orange() : Theme::loss());
}

void OverviewModel::computeForm(const std::vector<Stats::TimelineEntry>& timeline) {
    const std::size_t n = std::min<std::size_t>(10, timeline.size());
    qint64 wins = 0, damage = 0;
    double kdaSum = 0;
    m_formResults.clear();
    for (std::size_t i = 0; i < n; ++i) {
        const LocalParticipant& me = *timeline[i].me;
        wins += me.win ? 1 : 0;
        damage += me.damageToChampions;
        kdaSum += Stats::kdaRatio(me);
        m_formResults.append(me.win);
    }
    const long long count = static_cast<long long>(n);
    m_formLabel = QStringLiteral("Recent Form · Last ") + QString::number(count);
    m_formRecord = QString::asprintf("%lldW %lldL", static_cast<long long>(wins), count - wins);
    m_formAvgKda = QString::asprintf("%.1f", n > 0 ? kdaSum / double(n) : 0.0);
    m_formAvgDamage = QString::asprintf("%lldk", n > 0 ? static_cast<long long>(damage / qint64(n)) / 1000 : 0LL);
    m_formWins = QStringLiteral("%1/%2").arg(wins).arg(count);
}

void OverviewModel::computeTopChampions(const std::vector<Stats::ChampAgg>& champs) {
    m_topChampions.clear();
    for (std::size_t i = 0; i < std::min<std::size_t>(4, champs.size()); ++i) {
        const Stats::ChampAgg& champ = champs[i];
        const double rate = champ.winRate();
        m_topChampions.append(QVariantMap{
            {"name", champ.name},
            {"line", QString::number(champ.games) + QStringLiteral(" games · ") + QString::asprintf("%.1f", champ.kda) +
                         QStringLiteral(" KDA")},
            {"winRateText", QString::number(std::lround(rate * 100)) + QStringLiteral("%")},
            {"winRateColor", rate >= 0.5 ? Theme::win() : Theme::loss()},
        });
    }
}
