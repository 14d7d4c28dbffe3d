#pragma once

#include "game_data/stats.h"
#include "session/screen_model.h"

#include <QAbstractListModel>
#include <QHash>
#include <QVariantList>
#include <optional>
#include <vector>

// One card per champion of the user's pool, in the order the screen chose.
class ChampionCardsModel : public QAbstractListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The champion pool hands out its cards.")

public:
    enum Role {
        ChampionIdRole = Qt::UserRole + 1,
        NameRole,
        GamesTextRole,  // "%lld games"
        WinPercentRole, // 0…100
        RingColorRole,
        GamesValueRole, // "Games" cell
        KdaTextRole,    // "%.1f"
        KdaColorRole,
        CsTextRole, // "%.1f"
        HasScoreRole,
        ScoreTextRole, // the mean score, rounded
        WinsRole,
        LossesRole,
    };

    struct Card {
        Stats::ChampAgg champ;
        std::optional<double> score;
    };

    explicit ChampionCardsModel(QObject* parent = nullptr) : QAbstractListModel(parent) {}

    void setCards(std::vector<Card> cards);
    [[nodiscard]] const std::vector<Card>& cards() const { return m_cards; }

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

private:
    std::vector<Card> m_cards;
};

// The champion pool: the user's per-champion records with their mean "self" performance score.
class ChampionsModel : public ScreenModel {
    Q_OBJECT
    QML_ELEMENT

    Q_PROPERTY(Sort sort READ sort WRITE setSort NOTIFY changed)
    Q_PROPERTY(QVariantList sortChoices READ sortChoices NOTIFY changed)
    Q_PROPERTY(QString poolLabel READ poolLabel NOTIFY changed)
    Q_PROPERTY(bool hasChampions READ hasChampions NOTIFY changed)
    Q_PROPERTY(ChampionCardsModel* cards READ cards CONSTANT)

public:
    enum class Sort { Played, WinRate, Kda };
    Q_ENUM(Sort)

    explicit ChampionsModel(QObject* parent = nullptr);

    [[nodiscard]] Sort sort() const { return m_sort; }
    void setSort(Sort sort);
    [[nodiscard]] QVariantList sortChoices() const;
    [[nodiscard]] QString poolLabel() const;
    [[nodiscard]] bool hasChampions() const { return m_cards->rowCount() > 0; }
    [[nodiscard]] ChampionCardsModel* cards() const { return m_cards; }

    [[nodiscard]] static QString sortLabel(Sort sort);
    // Re-orders a most-played list; ties keep their most-played order.
    static void order(std::vector<ChampionCardsModel::Card>& cards, Sort sort);
    // The mean score per champion over the scores of baseline kind "self".
    [[nodiscard]] static QHash<qint64, double> scoreByChamp(const std::vector<const LocalPerformanceScore*>& scores);
    // Whole points, halves away from zero.
    [[nodiscard]] static QString scoreText(double score);

Q_SIGNALS:
    void changed();

protected:
    void recompute() override;

private:
    void applySort();

    ChampionCardsModel* m_cards;
    std::vector<ChampionCardsModel::Card> m_mostPlayed;
    Sort m_sort = Sort::Played;
};
