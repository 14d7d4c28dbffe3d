#pragma once

#include "backend/social_records.h"
#include "screens/mastery_list_model.h"
#include "screens/rank_entry_list_model.h"
#include "session/app_state.h"

#include <QCoro/QCoroTask>
#include <QObject>
#include <QPointer>
#include <optional>

// The player search: any player's public profile by Riot ID, fetched from the backend and kept
// only while the screen is shown. It reads nothing of the archive.
class SearchModel : public QObject {
    Q_OBJECT
    QML_ELEMENT

    Q_PROPERTY(AppState* appState READ appState WRITE setAppState NOTIFY appStateChanged)
    Q_PROPERTY(QString riotId READ riotId WRITE setRiotId NOTIFY searchChanged)
    Q_PROPERTY(bool canSearch READ canSearch NOTIFY searchChanged)
    Q_PROPERTY(bool busy READ busy NOTIFY searchChanged)
    Q_PROPERTY(bool hasError READ hasError NOTIFY searchChanged)
    Q_PROPERTY(QString errorText READ errorText NOTIFY searchChanged)
    // Nothing searched yet, or the last search cleared: the screen invites a search.
    Q_PROPERTY(bool isIdle READ isIdle NOTIFY searchChanged)

    Q_PROPERTY(bool hasProfile READ hasProfile NOTIFY searchChanged)
    Q_PROPERTY(QString playerName READ playerName NOTIFY searchChanged)
    Q_PROPERTY(QString platformText READ platformText NOTIFY searchChanged)
    Q_PROPERTY(bool hasRanks READ hasRanks NOTIFY searchChanged)
    Q_PROPERTY(RankEntryListModel* ranks READ ranks CONSTANT)
    Q_PROPERTY(bool hasMastery READ hasMastery NOTIFY searchChanged)
    Q_PROPERTY(MasteryListModel* mastery READ mastery CONSTANT)

public:
    // The search has no platform choice.
    static inline const QString platform = QStringLiteral("euw1");

    explicit SearchModel(QObject* parent = nullptr);

    [[nodiscard]] AppState* appState() const { return m_state; }
    void setAppState(AppState* state);

    [[nodiscard]] const QString& riotId() const { return m_riotId; }
    void setRiotId(const QString& riotId);
    // Any text at all enables the button, even spaces only: search() then does nothing.
    [[nodiscard]] bool canSearch() const { return !m_busy && !m_riotId.isEmpty(); }
    [[nodiscard]] bool busy() const { return m_busy; }
    [[nodiscard]] bool hasError() const { return m_error.has_value(); }
    [[nodiscard]] QString errorText() const { return m_error.value_or(QString()); }
    [[nodiscard]] bool isIdle() const { return !m_busy && !m_error && !m_profile; }

    [[nodiscard]] bool hasProfile() const { return m_profile.has_value(); }
    [[nodiscard]] const std::optional<PlayerProfileDto>& profile() const { return m_profile; }
    [[nodiscard]] QString playerName() const;
    [[nodiscard]] QString platformText() const { return m_profile ? m_profile->platform.toUpper() : QString(); }
    [[nodiscard]] bool hasRanks() const { return m_ranks->rowCount() > 0; }
    [[nodiscard]] RankEntryListModel* ranks() const { return m_ranks; }
    [[nodiscard]] bool hasMastery() const { return m_mastery->rowCount() > 0; }
    [[nodiscard]] MasteryListModel* mastery() const { return m_mastery; }

    // The account's Riot ID, or "Player" when it has neither name nor tag.
    [[nodiscard]] static QString nameOf(const PlayerProfileDto::AccountInfo& account);

    // Looks up the typed Riot ID, trimmed; spaces only do nothing.
    Q_INVOKABLE void search();

Q_SIGNALS:
    void appStateChanged();
    void searchChanged();

private:
    QCoro::Task<> fetch(QString riotId);
    void setProfile(std::optional<PlayerProfileDto> profile);
    void renameChampions();

    QPointer<AppState> m_state;
    QString m_riotId;
    bool m_busy = false;
    std::optional<QString> m_error;
    std::optional<PlayerProfileDto> m_profile;
    RankEntryListModel* m_ranks;
    MasteryListModel* m_mastery;
};
