#pragma once

#include "backend/social_records.h"
#include "screens/duo_list_model.h"
#include "screens/friend_game_list_model.h"
#include "screens/friend_record_view.h"
#include "session/app_state.h"

#include <QColor>
#include <QCoro/QCoroTask>
#include <QObject>
#include <QPointer>
#include <QVariantList>
#include <optional>

// The friends screen: the frequent duos as the backend detects them, and the record of the games
// played together with one player, picked from the duos or looked up by Riot ID. Everything
// comes from the backend and lives only as long as the screen.
class FriendsModel : public QObject {
    Q_OBJECT
    QML_ELEMENT

    Q_PROPERTY(AppState* appState READ appState WRITE setAppState NOTIFY appStateChanged)

    // The look-up.
    Q_PROPERTY(QString riotId READ riotId WRITE setRiotId NOTIFY lookupChanged)
    Q_PROPERTY(bool canFind READ canFind NOTIFY lookupChanged)
    Q_PROPERTY(bool busy READ busy NOTIFY lookupChanged)
    Q_PROPERTY(bool hasError READ hasError NOTIFY lookupChanged)
    Q_PROPERTY(QString errorText READ errorText NOTIFY lookupChanged)

    // The duo list.
    Q_PROPERTY(DuoListState duoListState READ duoListState NOTIFY duosChanged)
    Q_PROPERTY(QString duosErrorText READ duosErrorText NOTIFY duosChanged)
    Q_PROPERTY(DuoListModel* duos READ duos CONSTANT)

    // The record with one player; while there is one it replaces the duo list.
    Q_PROPERTY(bool hasDetail READ hasDetail NOTIFY recordChanged)
    Q_PROPERTY(bool hasGamesTogether READ hasGamesTogether NOTIFY recordChanged)
    Q_PROPERTY(QString noGamesMessage READ noGamesMessage NOTIFY recordChanged)
    Q_PROPERTY(QString friendTitle READ friendTitle NOTIFY recordChanged)
    Q_PROPERTY(int friendIconId READ friendIconId NOTIFY recordChanged)
    Q_PROPERTY(QString friendInitials READ friendInitials NOTIFY recordChanged)
    Q_PROPERTY(QVariantList friendAvatarColors READ friendAvatarColors NOTIFY recordChanged)
    Q_PROPERTY(QString togetherText READ togetherText NOTIFY recordChanged)
    Q_PROPERTY(QString totalWinsText READ totalWinsText NOTIFY recordChanged)
    Q_PROPERTY(QString totalLossesText READ totalLossesText NOTIFY recordChanged)
    Q_PROPERTY(double totalWinPercent READ totalWinPercent NOTIFY recordChanged)

    Q_PROPERTY(QString seasonLabel READ seasonLabel NOTIFY recordChanged)
    Q_PROPERTY(bool hasSeasonMenu READ hasSeasonMenu NOTIFY recordChanged)
    Q_PROPERTY(QVariantList seasonChoices READ seasonChoices NOTIFY recordChanged)
    Q_PROPERTY(QString shownGamesText READ shownGamesText NOTIFY recordChanged)
    Q_PROPERTY(QString winsText READ winsText NOTIFY recordChanged)
    Q_PROPERTY(QString lossesText READ lossesText NOTIFY recordChanged)
    Q_PROPERTY(int wins READ wins NOTIFY recordChanged)
    Q_PROPERTY(int losses READ losses NOTIFY recordChanged)
    Q_PROPERTY(QString winPercentText READ winPercentText NOTIFY recordChanged)
    Q_PROPERTY(QColor winPercentColor READ winPercentColor NOTIFY recordChanged)
    Q_PROPERTY(QVariantList categoryChips READ categoryChips NOTIFY recordChanged)
    Q_PROPERTY(FriendGameListModel* games READ games CONSTANT)
    Q_PROPERTY(bool canExpand READ canExpand NOTIFY recordChanged)
    Q_PROPERTY(QString expandText READ expandText NOTIFY recordChanged)

public:
    enum class DuoListState { Loading, Failed, Empty, Listed };
    Q_ENUM(DuoListState)

    // The look-up has no platform choice.
    static inline const QString platform = QStringLiteral("euw1");

    explicit FriendsModel(QObject* parent = nullptr);

    [[nodiscard]] AppState* appState() const { return m_state; }
    void setAppState(AppState* state);

    [[nodiscard]] const QString& riotId() const { return m_riotId; }
    void setRiotId(const QString& riotId);
    // Any text at all enables the button, even spaces only: lookup() then does nothing.
    [[nodiscard]] bool canFind() const { return !m_busy && !m_riotId.isEmpty(); }
    [[nodiscard]] bool busy() const { return m_busy; }
    [[nodiscard]] bool hasError() const { return m_error.has_value(); }
    [[nodiscard]] QString errorText() const { return m_error.value_or(QString()); }

    [[nodiscard]] DuoListState duoListState() const;
    [[nodiscard]] QString duosErrorText() const { return m_duosError.value_or(QString()); }
    [[nodiscard]] DuoListModel* duos() const { return m_duos; }

    [[nodiscard]] bool hasDetail() const { return m_detail.has_value(); }
    [[nodiscard]] const std::optional<FriendStatsDto>& detail() const { return m_detail; }
    [[nodiscard]] const QString& detailName() const { return m_detailName; }
    [[nodiscard]] const std::optional<FriendRecordView>& view() const { return m_view; }
    [[nodiscard]] bool hasGamesTogether() const { return m_detail && !m_detail->games.isEmpty(); }
    [[nodiscard]] QString noGamesMessage() const;
    [[nodiscard]] QString friendTitle() const { return m_view ? m_view->title : QString(); }
    [[nodiscard]] int friendIconId() const;
    [[nodiscard]] QString friendInitials() const;
    [[nodiscard]] QVariantList friendAvatarColors() const;
    [[nodiscard]] QString togetherText() const;
    [[nodiscard]] QString totalWinsText() const;
    [[nodiscard]] QString totalLossesText() const;
    [[nodiscard]] double totalWinPercent() const { return m_detail ? m_detail->total.winrate * 100.0 : 0.0; }

    [[nodiscard]] QString seasonLabel() const { return m_view ? m_view->seasonLabel() : QString(); }
    [[nodiscard]] bool hasSeasonMenu() const { return m_view && m_view->hasSeasonMenu(); }
    [[nodiscard]] QVariantList seasonChoices() const;
    [[nodiscard]] QString shownGamesText() const;
    [[nodiscard]] QString winsText() const;
    [[nodiscard]] QString lossesText() const;
    [[nodiscard]] int wins() const { return m_view ? m_view->wins : 0; }
    [[nodiscard]] int losses() const { return m_view ? m_view->losses() : 0; }
    [[nodiscard]] QString winPercentText() const;
    [[nodiscard]] QColor winPercentColor() const;
    [[nodiscard]] QVariantList categoryChips() const;
    [[nodiscard]] FriendGameListModel* games() const { return m_games; }
    [[nodiscard]] bool canExpand() const { return m_view && m_view->canExpand(); }
    [[nodiscard]] QString expandText() const;

    // Fetches the duo list again: when the screen comes into view, and on "Retry".
    Q_INVOKABLE void loadDuos();
    // Looks up the typed Riot ID (trimmed), then the record with that player.
    Q_INVOKABLE void lookup();
    // Opens the record with a duo: no look-up of the profile, the name given is the title.
    Q_INVOKABLE void lookupPuuid(const QString& puuid, const QString& name);
    // Back to the duo list, as it was: it is not fetched again.
    Q_INVOKABLE void back();
    Q_INVOKABLE void pickSeason(int season);
    Q_INVOKABLE void pickAllSeasons();
    Q_INVOKABLE void toggleAllGames();

Q_SIGNALS:
    void appStateChanged();
    void lookupChanged();
    void duosChanged();
    void recordChanged();

private:
    QCoro::Task<> fetchDuos();
    QCoro::Task<> fetchRecord(std::optional<QString> riotId, QString puuid, QString name);
    void startLookup();
    void failLookup(const QString& text);
    void setDetail(std::optional<FriendStatsDto> detail);
    void rebuildRecord();

    QPointer<AppState> m_state;

    QString m_riotId;
    bool m_busy = false;
    std::optional<QString> m_error;

    DuoListModel* m_duos;
    bool m_loadingDuos = false;
    std::optional<QString> m_duosError;

    std::optional<FriendStatsDto> m_detail;
    QString m_detailName;
    std::optional<qint64> m_pickedSeason;
    bool m_allSeasons = false;
    bool m_showAllGames = false;
    std::optional<FriendRecordView> m_view;
    FriendGameListModel* m_games;
};
