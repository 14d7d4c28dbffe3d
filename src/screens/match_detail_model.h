#pragma once

#include "game_data/stats.h"
#include "session/screen_model.h"

#include <QColor>
#include <QVariantList>
#include <optional>

// One stored game in full: the header and one block per team, the user's team first.
class MatchDetailModel : public ScreenModel {
    Q_OBJECT
    QML_ELEMENT

    // A QML number: backend ids are whole numbers far below 2^53, so a double holds each exactly.
    Q_PROPERTY(double matchServerId READ matchServerId WRITE setMatchServerId NOTIFY changed)
    Q_PROPERTY(bool valid READ valid NOTIFY changed)
    Q_PROPERTY(QString championName READ championName NOTIFY changed)
    Q_PROPERTY(QString categoryChip READ categoryChip NOTIFY changed)
    Q_PROPERTY(QColor categoryColor READ categoryColor NOTIFY changed)
    Q_PROPERTY(QString headerLine READ headerLine NOTIFY changed)
    Q_PROPERTY(QString resultText READ resultText NOTIFY changed)
    Q_PROPERTY(bool win READ win NOTIFY changed)
    Q_PROPERTY(QVariantList teams READ teams NOTIFY changed)

public:
    struct Team {
        qint64 id = 0;
        bool isMine = false;
        std::vector<const LocalParticipant*> rows; // sorted by position
    };

    explicit MatchDetailModel(QObject* parent = nullptr) : ScreenModel(parent) {}

    [[nodiscard]] double matchServerId() const { return static_cast<double>(m_matchServerId); }
    void setMatchServerId(double id);
    [[nodiscard]] bool valid() const { return m_game.has_value(); }
    [[nodiscard]] QString championName() const;
    [[nodiscard]] QString categoryChip() const;
    [[nodiscard]] QColor categoryColor() const;
    [[nodiscard]] QString headerLine() const;
    [[nodiscard]] QString resultText() const;
    [[nodiscard]] bool win() const { return m_game && m_game->me->win; }
    [[nodiscard]] const QVariantList& teams() const { return m_teams; }

    // The roster by team, the user's team first, each team's rows in position order (rows
    // without a position first).
    [[nodiscard]] static std::vector<Team> teamsOf(const Stats::Game& game);
    // The largest damage of the roster, at least 1.
    [[nodiscard]] static qint64 maxDamage(const Stats::Game& game);
    // Finds the game of one match in the store; none when the user has no row in it.
    [[nodiscard]] static std::optional<Stats::Game> gameOf(const ArchiveStore& store, qint64 matchServerId,
                                                           const QSet<QString>& owners);

Q_SIGNALS:
    void changed();

protected:
    void recompute() override;

private:
    qint64 m_matchServerId = 0;
    std::optional<Stats::Game> m_game;
    QVariantList m_teams;
};
