#include "screens/match_detail_model.h"

#include "game_data/league_queue.h"
#include "screens/match_texts.h"
#include "theme/theme.h"

#include <QVariantMap>
#include <algorithm>

void MatchDetailModel::setMatchServerId(double id) {
    const auto whole = static_cast<qint64>(id);
    if (whole == m_matchServerId)
        return;
    m_matchServerId = whole;
    recompute();
}

std::optional<Stats::Game> MatchDetailModel::gameOf(const ArchiveStore& store, qint64 matchServerId,
                                                    const QSet<QString>& owners) {
    const auto matches = store.matches().withServerIds({matchServerId});
    if (matches.empty())
        return std::nullopt;
    const std::vector<LocalParticipant*> rows = store.participants().withMatchServerId(matchServerId);
    std::vector<const LocalParticipant*> roster(rows.begin(), rows.end());
    std::sort(roster.begin(), roster.end(),
              [](const LocalParticipant* a, const LocalParticipant* b) { return a->localId < b->localId; });
    const std::vector<const LocalMatch*> one{matches.front()};
    auto games = Stats::games(one, roster, owners, {});
    if (games.empty())
        return std::nullopt;
    return std::move(games.front());
}

std::vector<MatchDetailModel::Team> MatchDetailModel::teamsOf(const Stats::Game& game) {
    std::vector<Team> teams;
    for (const LocalParticipant* row : game.roster) {
        auto team = std::find_if(teams.begin(), teams.end(), [&](const Team& t) { return t.id == row->teamId; });
        if (team == teams.end()) {
            teams.push_back({row->teamId, row->teamId == game.me->teamId, {}});
            team = teams.end() - 1;
        }
        team->rows.push_back(row);
    }
    std::stable_partition(teams.begin(), teams.end(), [](const Team& t) { return t.isMine; });
    for (Team& team : teams)
        std::stable_sort(team.rows.begin(), team.rows.end(), [](const LocalParticipant* a, const LocalParticipant* b) {
            return a->teamPosition.value_or(QString()) < b->teamPosition.value_or(QString());
        });
    return teams;
}

qint64 MatchDetailModel::maxDamage(const Stats::Game& game) {
    qint64 most = 1;
    for (const LocalParticipant* row : game.roster)
        most = std::max<qint64>(most, row->damageToChampions);
    return most;
}

void MatchDetailModel::recompute() {
    m_game.reset();
    m_teams.clear();
    if (store() && m_matchServerId != 0)
        m_game = gameOf(*store(), m_matchServerId, owners());
    if (m_game) {
        const QSet<QString> friends = appState() ? appState()->friendPuuids() : QSet<QString>();
        const qint64 most = maxDamage(*m_game);
        for (const Team& team : teamsOf(*m_game)) {
            qint64 kills = 0, deaths = 0, assists = 0;
            QVariantList rows;
            for (const LocalParticipant* p : team.rows) {
                kills += p->kills;
                deaths += p->deaths;
                assists += p->assists;
                const bool isMe = p->puuid == m_game->me->puuid;
                QVariantList items;
                for (qint64 item : p->items)
                    items << static_cast<int>(item);
                rows.append(QVariantMap{
                    {"championName", p->championName.toString()},
                    {"displayName", p->displayName()},
                    {"isMe", isMe},
                    {"isFriend", !isMe && friends.contains(p->puuid.toString())},
                    {"kills", static_cast<int>(p->kills)},
                    {"deaths", static_cast<int>(p->deaths)},
                    {"assists", static_cast<int>(p->assists)},
                    {"kdaText", MatchTexts::kdaShort(*p)},
                    {"kdaColor", Theme::kda(Stats::kdaRatio(*p))},
                    {"cs", QString::number(p->totalCs)},
                    {"gold", MatchTexts::thousands(p->goldEarned)},
                    {"vision", QString::number(p->visionScore)},
                    {"damagePercent", 100.0 * double(p->damageToChampions) / double(most)},
                    {"damageText", MatchTexts::damage(p->damageToChampions)},
                    {"win", p->win},
                    {"items", items},
                });
            }
            const bool won = !team.rows.empty() && team.rows.front()->win;
            m_teams.append(QVariantMap{
                {"title", team.isMine ? QStringLiteral("Your Team") : QStringLiteral("Enemy Team")},
                {"resultText", MatchTexts::result(won)},
                {"win", won},
                {"totals", QString::asprintf("%lld / %lld / %lld", static_cast<long long>(kills),
                                             static_cast<long long>(deaths), static_cast<long long>(assists))},
                {"rows", rows},
            });
        }
    }
    Q_EMIT changed();
}

QString MatchDetailModel::championName() const {
    return m_game ? m_game->me->championName.toString() : QString();
}

QString MatchDetailModel::categoryChip() const {
    return m_game ? MatchTexts::categoryChip(m_game->category()) : QString();
}

QColor MatchDetailModel::categoryColor() const {
    return m_game ? MatchTexts::categoryColor(m_game->category()) : QColor();
}

QString MatchDetailModel::headerLine() const {
    if (!m_game)
        return {};
    return LeagueQueue::label(m_game->match->queueId, m_game->match->gameMode.toOptional()) + QStringLiteral(" · ") +
           MatchTexts::minutes(m_game->match->gameDuration);
}

QString MatchDetailModel::resultText() const {
    return m_game ? MatchTexts::result(m_game->me->win) : QString();
}
