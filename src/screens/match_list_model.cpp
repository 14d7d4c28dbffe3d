#include "screens/match_list_model.h"

#include "game_data/league_queue.h"
#include "screens/match_texts.h"
#include "theme/theme.h"

void MatchListModel::setGames(std::vector<Stats::Game> games) {
    beginResetModel();
    m_games = std::move(games);
    if (!m_now.isValid())
        m_now = QDateTime::currentDateTimeUtc();
    endResetModel();
}

int MatchListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(m_games.size());
}

QStringList MatchListModel::friendNames(const Stats::Game& game) {
    QStringList names;
    for (const LocalParticipant* row : game.friends) {
        if (names.size() == 3)
            break;
        names << row->displayName();
    }
    return names;
}

QVariant MatchListModel::data(const QModelIndex& index, int role) const {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid))
        return {};
    const Stats::Game& game = m_games[static_cast<std::size_t>(index.row())];
    const LocalParticipant& me = *game.me;
    const LocalMatch& match = *game.match;
    switch (role) {
    case ChampionNameRole:
        return me.championName.toString();
    case WinRole:
        return me.win;
    case ResultTextRole:
        return MatchTexts::result(me.win);
    case QueueLabelRole:
        return LeagueQueue::label(match.queueId, match.gameMode.toOptional());
    case CategoryChipRole:
        return MatchTexts::categoryChip(game.category());
    case CategoryColorRole:
        return MatchTexts::categoryColor(game.category());
    case TimeTextRole:
        return MatchTexts::timeText(match, m_now);
    case KillsRole:
        return static_cast<int>(me.kills);
    case DeathsRole:
        return static_cast<int>(me.deaths);
    case AssistsRole:
        return static_cast<int>(me.assists);
    case KdaTextRole:
        return MatchTexts::kdaRatio(me);
    case KdaColorRole:
        return Theme::kda(Stats::kdaRatio(me));
    case CsTextRole:
        return MatchTexts::creepScore(me);
    case DamageTextRole:
        return MatchTexts::damage(me.damageToChampions);
    case ItemsRole: {
        QVariantList items;
        for (qint64 item : me.items)
            items << static_cast<int>(item);
        return items;
    }
    case FriendNamesRole:
        return friendNames(game);
    case FriendTextRole:
        return friendNames(game).join(QStringLiteral(", "));
    case MatchServerIdRole:
        return match.serverId;
    default:
        return {};
    }
}

QHash<int, QByteArray> MatchListModel::roleNames() const {
    return {{ChampionNameRole, "championName"},
            {WinRole, "win"},
            {ResultTextRole, "resultText"},
            {QueueLabelRole, "queueLabel"},
            {CategoryChipRole, "categoryChip"},
            {CategoryColorRole, "categoryColor"},
            {TimeTextRole, "timeText"},
            {KillsRole, "kills"},
            {DeathsRole, "deaths"},
            {AssistsRole, "assists"},
            {KdaTextRole, "kdaText"},
            {KdaColorRole, "kdaColor"},
            {CsTextRole, "csText"},
            {DamageTextRole, "damageText"},
            {ItemsRole, "items"},
            {FriendNamesRole, "friendNames"},
            {FriendTextRole, "friendText"},
            {MatchServerIdRole, "matchServerId"}};
}
