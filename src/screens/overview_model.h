#pragma once

#include "game_data/stats.h"
#include "screens/match_list_model.h"
#include "session/screen_model.h"

#include <QColor>
#include <QVariantList>
#include <optional>

// The overview: hero card, stat cards, recent form, top champions and the newest games.
class OverviewModel : public ScreenModel {
    Q_OBJECT
    QML_ELEMENT

    Q_PROPERTY(bool isEmpty READ isEmpty NOTIFY changed)
    Q_PROPERTY(QString emptyMessage READ emptyMessage NOTIFY changed)
    Q_PROPERTY(QString heroName READ heroName NOTIFY changed)
    Q_PROPERTY(QString heroTag READ heroTag NOTIFY changed)
    Q_PROPERTY(QString heroChampion READ heroChampion NOTIFY changed)
    Q_PROPERTY(int heroIconId READ heroIconId NOTIFY changed)
    Q_PROPERTY(QVariantList pills READ pills NOTIFY changed)
    Q_PROPERTY(bool hasRank READ hasRank NOTIFY changed)
    Q_PROPERTY(QString rankTier READ rankTier NOTIFY changed)
    Q_PROPERTY(QString rankLabel READ rankLabel NOTIFY changed)
    Q_PROPERTY(QString rankLpText READ rankLpText NOTIFY changed)
    Q_PROPERTY(QString rankGamesText READ rankGamesText NOTIFY changed)
    Q_PROPERTY(double rankedRingPercent READ rankedRingPercent NOTIFY changed)
    Q_PROPERTY(double bonusRingPercent READ bonusRingPercent NOTIFY changed)
    Q_PROPERTY(QVariantList statCards READ statCards NOTIFY changed)
    Q_PROPERTY(QString formLabel READ formLabel NOTIFY changed)
    Q_PROPERTY(QString formRecord READ formRecord NOTIFY changed)
    Q_PROPERTY(QVariantList formResults READ formResults NOTIFY changed)
    Q_PROPERTY(QString formAvgKda READ formAvgKda NOTIFY changed)
    Q_PROPERTY(QString formAvgDamage READ formAvgDamage NOTIFY changed)
    Q_PROPERTY(QString formWins READ formWins NOTIFY changed)
    Q_PROPERTY(QVariantList topChampions READ topChampions NOTIFY changed)
    Q_PROPERTY(MatchListModel* recentMatches READ recentMatches CONSTANT)

public:
    struct Streak {
        int length = 0;
        bool winning = false;
    };

    explicit OverviewModel(QObject* parent = nullptr);

    // The run of equal results at the start of a newest-first list.
    [[nodiscard]] static Streak streakOf(const std::vector<Stats::TimelineEntry>& timeline);
    // "▲ 2W streak" / "▼ 3L streak"; empty below two games.
    [[nodiscard]] static QString streakPill(const Streak& streak);
    // The most played position as "Mid Main"; none when no game has a position.
    [[nodiscard]] static std::optional<QString> topRoleOf(const std::vector<Stats::TimelineEntry>& timeline);
    // wins / max(wins + losses, 1) × 100.
    [[nodiscard]] static double ringPercent(qint64 wins, qint64 losses);

    [[nodiscard]] bool isEmpty() const { return m_isEmpty; }
    [[nodiscard]] const QString& emptyMessage() const { return m_emptyMessage; }
    [[nodiscard]] const QString& heroName() const { return m_heroName; }
    [[nodiscard]] const QString& heroTag() const { return m_heroTag; }
    [[nodiscard]] const QString& heroChampion() const { return m_heroChampion; }
    [[nodiscard]] int heroIconId() const { return m_heroIconId; }
    [[nodiscard]] const QVariantList& pills() const { return m_pills; }
    [[nodiscard]] bool hasRank() const { return m_hasRank; }
    [[nodiscard]] const QString& rankTier() const { return m_rankTier; }
    [[nodiscard]] const QString& rankLabel() const { return m_rankLabel; }
    [[nodiscard]] const QString& rankLpText() const { return m_rankLpText; }
    [[nodiscard]] const QString& rankGamesText() const { return m_rankGamesText; }
    [[nodiscard]] double rankedRingPercent() const { return m_rankedRing; }
    [[nodiscard]] double bonusRingPercent() const { return m_bonusRing; }
    [[nodiscard]] const QVariantList& statCards() const { return m_statCards; }
    [[nodiscard]] const QString& formLabel() const { return m_formLabel; }
    [[nodiscard]] const QString& formRecord() const { return m_formRecord; }
    [[nodiscard]] const QVariantList& formResults() const { return m_formResults; }
    [[nodiscard]] const QString& formAvgKda() const { return m_formAvgKda; }
    [[nodiscard]] const QString& formAvgDamage() const { return m_formAvgDamage; }
    [[nodiscard]] const QString& formWins() const { return m_formWins; }
    [[nodiscard]] const QVariantList& topChampions() const { return m_topChampions; }
    [[nodiscard]] MatchListModel* recentMatches() const { return m_recent; }

Q_SIGNALS:
    void changed();

protected:
    void recompute() override;

private:
    void computeHero(const std::vector<Stats::TimelineEntry>& timeline, const std::vector<Stats::ChampAgg>& champs);
    void computeRank(const std::vector<Stats::TimelineEntry>& timeline, const std::vector<Stats::Game>& games);
    void computeStatCards(const std::vector<Stats::TimelineEntry>& timeline);
    void computeForm(const std::vector<Stats::TimelineEntry>& timeline);
    void computeTopChampions(const std::vector<Stats::ChampAgg>& champs);

    MatchListModel* m_recent;
    bool m_isEmpty = true;
    QString m_emptyMessage;
    QString m_heroName;
    QString m_heroTag;
    QString m_heroChampion;
    int m_heroIconId = -1;
    QVariantList m_pills;
    bool m_hasRank = false;
    QString m_rankTier;
    QString m_rankLabel;
    QString m_rankLpText;
    QString m_rankGamesText;
    double m_rankedRing = 0;
    double m_bonusRing = 0;
    QVariantList m_statCards;
    QString m_formLabel;
    QString m_formRecord;
    QVariantList m_formResults;
    QString m_formAvgKda;
    QString m_formAvgDamage;
    QString m_formWins;
    QVariantList m_topChampions;
};
