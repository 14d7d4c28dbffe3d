#include "screens/rank_entry_list_model.h"

#include "game_data/rank_math.h"
#include "screens/social_texts.h"

void RankEntryListModel::setEntries(QList<RankEntryDto> entries) {
    beginResetModel();
    m_entries = std::move(entries);
    endResetModel();
}

int RankEntryListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(m_entries.size());
}

QString RankEntryListModel::lpText(const std::optional<qint64>& leaguePoints) {
    return leaguePoints ? QString::asprintf("%lld LP", static_cast<long long>(*leaguePoints)) : QString();
}

QVariant RankEntryListModel::data(const QModelIndex& index, int role) const {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid))
        return {};
    const RankEntryDto& entry = m_entries[index.row()];
    switch (role) {
    case QueueNameRole:
        return SocialTexts::queueName(entry.queueType);
    case TierRole:
        return entry.tier.value_or(QString());
    case RankLabelRole:
        return RankMath::label(entry.tier, entry.rank);
    case LpTextRole:
        return lpText(entry.leaguePoints);
    default:
        return {};
    }
}

QHash<int, QByteArray> RankEntryListModel::roleNames() const {
    return {{QueueNameRole, "queueName"}, {TierRole, "tier"}, {RankLabelRole, "rankLabel"}, {LpTextRole, "lpText"}};
}
