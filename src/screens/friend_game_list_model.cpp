#include "screens/friend_game_list_model.h"

#include "game_data/league_queue.h"
#include "screens/social_texts.h"

void FriendGameListModel::setGames(std::vector<const FriendStatsDto::Game*> games) {
    beginResetModel();
    m_games = std::move(games);
    endResetModel();
}

int FriendGameListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(m_games.size());
}

QVariant FriendGameListModel::data(const QModelIndex& index, int role) const {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid))
        return {};
    const FriendStatsDto::Game& game = *m_games[static_cast<std::size_t>(index.row())];
    switch (role) {
    case MatchIdRole:
        // A QML number: backend ids are whole numbers far below 2^53.
        return static_cast<double>(game.matchId);
    case OwnerChampionRole:
        return game.ownerChampion;
    case FriendChampionRole:
        return game.friendChampion;
    case QueueLabelRole:
        return LeagueQueue::label(game.queueId, game.gameMode);
    case DateTextRole:
        return SocialTexts::playedOn(game.playedAt);
    case WinRole:
        return game.win;
    default:
        return {};
    }
}

QHash<int, QByteArray> FriendGameListModel::roleNames() const {
    return {
        {MatchIdRole, "matchId"},       {OwnerChampionRole, "ownerChampion"}, {FriendChampionRole, "friendChampion"},
        {QueueLabelRole, "queueLabel"}, {DateTextRole, "dateText"},           {WinRole, "win"}};
}
