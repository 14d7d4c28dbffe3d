#pragma once

#include "game_data/stats.h"
#include "screens/timeline_event_list_model.h"
#include "screens/timeline_view_state.h"
#include "session/screen_model.h"

#include <QCoro/QCoroTask>
#include <QVariantList>
#include <optional>

// The timeline of one stored game: the header comes from the archive, the rest from the
// backend's timeline summary, fetched when the screen asks and kept only while it is shown.
class TimelineModel : public ScreenModel {
    Q_OBJECT
    QML_ELEMENT

    // A QML number: backend ids are whole numbers far below 2^53, so a double holds each exactly.
    Q_PROPERTY(double matchServerId READ matchServerId WRITE setMatchServerId NOTIFY gameChanged)
    Q_PROPERTY(QString championName READ championName NOTIFY gameChanged)
    Q_PROPERTY(QString subtitle READ subtitle NOTIFY gameChanged)

    Q_PROPERTY(bool busy READ busy NOTIFY stateChanged)
    Q_PROPERTY(bool hasError READ hasError NOTIFY stateChanged)
    Q_PROPERTY(QString errorText READ errorText NOTIFY stateChanged)
    Q_PROPERTY(bool hasSummary READ hasSummary NOTIFY stateChanged)

    Q_PROPERTY(QVariantList figures READ figures NOTIFY stateChanged)
    Q_PROPERTY(QVariantList objectives READ objectives NOTIFY stateChanged)
    Q_PROPERTY(bool hasFirstBlood READ hasFirstBlood NOTIFY stateChanged)
    Q_PROPERTY(QString firstBloodText READ firstBloodText NOTIFY stateChanged)
    Q_PROPERTY(bool firstBloodMine READ firstBloodMine NOTIFY stateChanged)

    Q_PROPERTY(bool hasChart READ hasChart NOTIFY stateChanged)
    Q_PROPERTY(QVariantList chartLine READ chartLine NOTIFY stateChanged)
    Q_PROPERTY(double zeroY READ zeroY NOTIFY stateChanged)
    Q_PROPERTY(QVariantList xTicks READ xTicks NOTIFY stateChanged)
    Q_PROPERTY(QVariantList yTicks READ yTicks NOTIFY stateChanged)

    Q_PROPERTY(bool hasEvents READ hasEvents NOTIFY stateChanged)
    Q_PROPERTY(TimelineEventListModel* events READ events CONSTANT)

public:
    static inline const QString unavailableText =
        QStringLiteral("This game's timeline isn't available (e.g. Mayhem / LTM).");

    explicit TimelineModel(QObject* parent = nullptr);

    [[nodiscard]] double matchServerId() const { return static_cast<double>(m_matchServerId); }
    void setMatchServerId(double id);
    [[nodiscard]] QString championName() const;
    [[nodiscard]] QString subtitle() const;
    // The Riot match id the timeline is asked for; empty while the game is not found.
    [[nodiscard]] QString matchId() const;

    [[nodiscard]] bool busy() const { return m_busy; }
    [[nodiscard]] bool hasError() const { return m_error.has_value(); }
    [[nodiscard]] QString errorText() const { return m_error.value_or(QString()); }
    [[nodiscard]] bool hasSummary() const { return m_state.has_value(); }

    [[nodiscard]] QVariantList figures() const;
    [[nodiscard]] QVariantList objectives() const;
    [[nodiscard]] bool hasFirstBlood() const { return m_state && m_state->firstBlood; }
    [[nodiscard]] QString firstBloodText() const;
    [[nodiscard]] bool firstBloodMine() const { return m_state && m_state->firstBloodMine; }

    [[nodiscard]] bool hasChart() const { return m_state && !m_state->chart.isEmpty(); }
    [[nodiscard]] QVariantList chartLine() const;
    [[nodiscard]] double zeroY() const { return m_state ? m_state->chart.zeroY : 0.0; }
    [[nodiscard]] QVariantList xTicks() const;
    [[nodiscard]] QVariantList yTicks() const;

    [[nodiscard]] bool hasEvents() const { return m_events->rowCount() > 0; }
    [[nodiscard]] TimelineEventListModel* events() const { return m_events; }

    // Fetches the game's timeline: busy meanwhile, then the summary or the error's text.
    Q_INVOKABLE void load();

Q_SIGNALS:
    void gameChanged();
    void stateChanged();

protected:
    void recompute() override;

private:
    QCoro::Task<> fetch(QString matchId);
    void show(std::optional<TimelineViewState> state, std::optional<QString> error);

    qint64 m_matchServerId = 0;
    std::optional<Stats::Game> m_game;
    bool m_busy = false;
    std::optional<QString> m_error;
    std::optional<TimelineViewState> m_state;
    TimelineEventListModel* m_events;
};
