#include "screens/duo_list_model.h"

#include "screens/social_texts.h"
#include "theme/theme.h"

#include <algorithm>
#include <limits>

namespace {

// A count for the win/loss bar, which only draws their ratio.
int barCount(qint64 count) {
    return static_cast<int>(std::clamp<qint64>(count, 0, std::numeric_limits<int>::max()));
}

} // namespace

void DuoListModel::setDuos(QList<DuoDto> duos, QDateTime now) {
    beginResetModel();
    m_duos = std::move(duos);
    m_now = std::move(now);
    endResetModel();
}

int DuoListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(m_duos.size());
}

QString DuoListModel::nameOf(const DuoDto& duo) {
    return duo.riotId.value_or(QStringLiteral("Unknown"));
}

int DuoListModel::iconOf(const std::optional<qint64>& profileIconId) {
    if (!profileIconId || *profileIconId < 1 || *profileIconId > std::numeric_limits<int>::max())
        return -1;
    return static_cast<int>(*profileIconId);
}

QVariant DuoListModel::data(const QModelIndex& index, int role) const {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid))
        return {};
    const DuoDto& duo = m_duos[index.row()];
    switch (role) {
    case PuuidRole:
        return duo.puuid;
    case NameRole:
        return nameOf(duo);
    case HasRankRole:
        return duo.rank.has_value();
    case RankTextRole:
        return duo.rank.value_or(QString());
    case RankColorsRole: {
        const Theme::Pair pair = Theme::tierPair(SocialTexts::tierOf(duo.rank.value_or(QString())));
        return QVariantList{pair[0], pair[1]};
    }
    case GamesTextRole:
        return QString::asprintf("%lld games", static_cast<long long>(duo.games));
    case WinsTextRole:
        return QString::asprintf("%lldW", static_cast<long long>(duo.wins));
    case LossesTextRole:
        return QString::asprintf("%lldL", static_cast<long long>(duo.losses));
    case LastPlayedTextRole:
        return SocialTexts::lastPlayed(duo.lastPlayed, m_now);
    case WinsRole:
        return barCount(duo.wins);
    case LossesRole:
        return barCount(duo.losses);
    case WinRateTextRole:
        return SocialTexts::winRateText(duo.winrate);
    case WinRateColorRole:
        return SocialTexts::winRateColor(duo.winrate);
    case IconIdRole:
        return iconOf(duo.profileIconId);
    case InitialsRole:
        return SocialTexts::initials(nameOf(duo));
    case AvatarColorsRole:
        return SocialTexts::avatarColors(duo.puuid);
    default:
        return {};
    }
}

QHash<int, QByteArray> DuoListModel::roleNames() const {
    return {{PuuidRole, "puuid"},
            {NameRole, "name"},
            {HasRankRole, "hasRank"},
            {RankTextRole, "rankText"},
            {RankColorsRole, "rankColors"},
            {GamesTextRole, "gamesText"},
            {WinsTextRole, "winsText"},
            {LossesTextRole, "lossesText"},
            {LastPlayedTextRole, "lastPlayedText"},
            {WinsRole, "wins"},
            {LossesRole, "losses"},
            {WinRateTextRole, "winRateText"},
            {WinRateColorRole, "winRateColor"},
            {IconIdRole, "iconId"},
            {InitialsRole, "initials"},
            {AvatarColorsRole, "avatarColors"}};
}
