#include "screens/champions_model.h"

#include "screens/archive_inputs.h"
#include "theme/theme.h"

#include <QVariantMap>
#include <algorithm>
#include <cmath>

void ChampionCardsModel::setCards(std::vector<Card> cards) {
    beginResetModel();
    m_cards = std::move(cards);
    endResetModel();
}

int ChampionCardsModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(m_cards.size());
}

QVariant ChampionCardsModel::data(const QModelIndex& index, int role) const {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid))
        return {};
    const Card& card = m_cards[static_cast<std::size_t>(index.row())];
    const Stats::ChampAgg& champ = card.champ;
    switch (role) {
    case ChampionIdRole:
        return champ.championId;
    case NameRole:
        return champ.name;
    case GamesTextRole:
        return QString::asprintf("%lld games", static_cast<long long>(champ.games));
    case WinPercentRole:
        return champ.winRate() * 100.0;
    // An even record counts as winning; no games at all does not.
    case RingColorRole:
        return champ.games > 0 && champ.winRate() >= 0.5 ? Theme::win() : Theme::loss();
    case GamesValueRole:
        return QString::asprintf("%lld", static_cast<long long>(champ.games));
    case KdaTextRole:
        return QString::asprintf("%.1f", champ.kda);
    case KdaColorRole:
        return Theme::kda(champ.kda);
    case CsTextRole:
        return QString::asprintf("%.1f", champ.csPerMin);
    case HasScoreRole:
        return card.score.has_value();
    case ScoreTextRole:
        return card.score ? ChampionsModel::scoreText(*card.score) : QString();
    case WinsRole:
        return champ.wins;
    case LossesRole:
        return champ.games - champ.wins;
    default:
        return {};
    }
}

QHash<int, QByteArray> ChampionCardsModel::roleNames() const {
    return {{ChampionIdRole, "championId"}, {NameRole, "name"},           {GamesTextRole, "gamesText"},
            {WinPercentRole, "winPercent"}, {RingColorRole, "ringColor"}, {GamesValueRole, "gamesValue"},
            {KdaTextRole, "kdaText"},       {KdaColorRole, "kdaColor"},   {CsTextRole, "csText"},
            {HasScoreRole, "hasScore"},     {ScoreTextRole, "scoreText"}, {WinsRole, "wins"},
            {LossesRole, "losses"}};
}

ChampionsModel::ChampionsModel(QObject* parent) : ScreenModel(parent), m_cards(new ChampionCardsModel(this)) {}

void ChampionsModel::setSort(Sort sort) {
    if (sort == m_sort)
        return;
    m_sort = sort;
    applySort();
}

QString ChampionsModel::sortLabel(Sort sort) {
    switch (sort) {
    case Sort::Played:
        return QStringLiteral("Most Played");
    case Sort::WinRate:
        return QStringLiteral("Win Rate");
    case Sort::Kda:
        return QStringLiteral("KDA");
    }
    return {};
}

QVariantList ChampionsModel::sortChoices() const {
    QVariantList choices;
    for (Sort sort : {Sort::Played, Sort::WinRate, Sort::Kda})
        choices.append(
            QVariantMap{{"label", sortLabel(sort)}, {"value", static_cast<int>(sort)}, {"selected", sort == m_sort}});
    return choices;
}

QString ChampionsModel::poolLabel() const {
    return QStringLiteral("Champion Pool · %1").arg(m_cards->rowCount());
}

void ChampionsModel::order(std::vector<ChampionCardsModel::Card>& cards, Sort sort) {
    using Card = ChampionCardsModel::Card;
    switch (sort) {
    case Sort::Played:
        break;
    case Sort::WinRate:
        std::stable_sort(cards.begin(), cards.end(),
                         [](const Card& a, const Card& b) { return a.champ.winRate() > b.champ.winRate(); });
        break;
    case Sort::Kda:
        std::stable_sort(cards.begin(), cards.end(),
                         [](const Card& a, const Card& b) { return a.champ.kda > b.champ.kda; });
        break;
    }
}

QHash<qint64, double> ChampionsModel::scoreByChamp(const std::vector<const LocalPerformanceScore*>& scores) {
    struct Sum {
        double total = 0;
        int count = 0;
    };
    QHash<qint64, Sum> sums;
    for (const LocalPerformanceScore* score : scores) {
        if (score->baselineKind != QLatin1String("self"))
            continue;
        Sum& sum = sums[score->championId];
        sum.total += score->score;
        ++sum.count;
    }
    QHash<qint64, double> means;
    means.reserve(sums.size());
    for (auto it = sums.cbegin(); it != sums.cend(); ++it)
        means.insert(it.key(), it->total / it->count);
    return means;
}

QString ChampionsModel::scoreText(double score) {
    return QString::asprintf("%lld", static_cast<long long>(std::llround(score)));
}

void ChampionsModel::recompute() {
    m_mostPlayed.clear();
    const QSet<QString> owners = this->owners();
    if (store() && !owners.isEmpty()) {
        std::vector<Stats::ChampAgg> champs = Stats::champions(ArchiveInputs::ownRows(*store(), owners));
        const QHash<qint64, double> scores = scoreByChamp(store()->performanceScores().all());
        m_mostPlayed.reserve(champs.size());
        for (Stats::ChampAgg& champ : champs) {
            const auto score = scores.constFind(champ.championId);
            m_mostPlayed.push_back(
                {std::move(champ), score != scores.cend() ? std::optional<double>(*score) : std::nullopt});
        }
    }
    applySort();
}

void ChampionsModel::applySort() {
    std::vector<ChampionCardsModel::Card> cards = m_mostPlayed;
    order(cards, m_sort);
    m_cards->setCards(std::move(cards));
    Q_EMIT changed();
}
