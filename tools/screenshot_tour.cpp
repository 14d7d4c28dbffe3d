// Renders every screen of the app with a prepared archive, headless, one PNG per screen:
//   screenshot_tour OUTPUT_FOLDER [GAMES] [WIDTHxHEIGHT]
// Run it under QT_QPA_PLATFORM=offscreen (scripts/tour does). The archive comes from the
// synthetic generator; a loopback fake backend answers the few calls a start-up makes.

#include "archive/archive_store.h"
#include "overlay/overlay_manager.h"
#include "overlay/strip_window.h"
#include "screens/history_model.h"
#include "screens/rank_model.h"
#include "session/app_state.h"
#include "support/fake_backend.h"
#include "support/fake_live_game.h"
#include "support/fake_window_list.h"
#include "synthetic_archive.h"
#include "theme/fonts.h"
#include "theme/game_images.h"

#include <QAbstractItemModel>
#include <QDir>
#include <QElapsedTimer>
#include <QGuiApplication>
#include <QHash>
#include <QJsonArray>
#include <QLinearGradient>
#include <QNetworkAccessManager>
#include <QPainter>
#include <QQmlApplicationEngine>
#include <QQuickItem>
#include <QQuickStyle>
#include <QQuickWindow>
#include <QRandomGenerator>
#include <QSettings>
#include <QTemporaryDir>
#include <QtQml/QQmlExtensionPlugin>
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <functional>

Q_IMPORT_QML_PLUGIN(QuillFern_AppPlugin)
Q_IMPORT_QML_PLUGIN(QuillFern_ThemePlugin)
Q_IMPORT_QML_PLUGIN(QuillFern_SessionPlugin)
Q_IMPORT_QML_PLUGIN(QuillFern_ScreensPlugin)
Q_IMPORT_QML_PLUGIN(QuillFern_OverlayPlugin)

namespace {

// Ranks for the first few friends, as the backend would know them.
const char* const friendRanks[] = {"GOLD II", "PLATINUM IV", nullptr, "SILVER I", "EMERALD III"};

QJsonArray friendGamesJson(const SyntheticArchive& archive, const QString& friendPuuid);

// The friends as the backend's duo statistics give them: the games each played on the owner's team.
QJsonArray duosJson(const SyntheticArchive& archive) {
    const QSet<QString> owners = archive.ownerPuuids();
    QHash<qint64, std::pair<qint64, bool>> ownerSide; // game -> (team, won)
    for (const ParticipantDto& p : archive.participants())
        if (owners.contains(p.puuid))
            ownerSide.insert(p.matchId, {p.teamId, p.win});
    const QStringList puuids = archive.friendPuuids();
    QHash<QString, std::pair<qint64, qint64>> together; // puuid -> (games, wins)
    for (const ParticipantDto& p : archive.participants()) {
        const auto side = ownerSide.constFind(p.matchId);
        if (side != ownerSide.cend() && side->first == p.teamId && puuids.contains(p.puuid)) {
            ++together[p.puuid].first;
            together[p.puuid].second += side->second ? 1 : 0;
        }
    }
    QJsonArray duos;
    for (qsizetype i = 0; i < puuids.size(); ++i) {
        const auto [games, wins] = together.value(puuids[i]);
        if (games == 0)
            continue;
        QJsonObject duo{{"puuid", puuids[i]},     {"riot_id", archive.friendRiotIds().value(i)},
                        {"games", games},         {"wins", wins},
                        {"losses", games - wins}, {"winrate", double(wins) / double(games)}};
        if (i < qsizetype(std::size(friendRanks)) && friendRanks[i])
            duo.insert("rank", friendRanks[i]);
        const QJsonArray together = friendGamesJson(archive, puuids[i]);
        if (!together.isEmpty())
            duo.insert("last_played", together.first().toObject().value("played_at"));
        duos.append(duo);
    }
    return duos;
}

// The backend's record of the games the owner played on the same team as one player, newest
// first; seasons by their number (2025 is season 15).
QJsonArray friendGamesJson(const SyntheticArchive& archive, const QString& friendPuuid) {
    const QSet<QString> owners = archive.ownerPuuids();
    QHash<qint64, const ParticipantDto*> owner;
    QHash<qint64, const ParticipantDto*> friendRow;
    for (const ParticipantDto& p : archive.participants()) {
        if (owners.contains(p.puuid))
            owner.insert(p.matchId, &p);
        else if (p.puuid == friendPuuid)
            friendRow.insert(p.matchId, &p);
    }
    QJsonArray games;
    const QList<MatchDto>& matches = archive.matches();
    for (auto m = matches.crbegin(); m != matches.crend(); ++m) {
        const ParticipantDto* me = owner.value(m->id);
        const ParticipantDto* other = friendRow.value(m->id);
        if (!me || !other || me->teamId != other->teamId)
            continue;
        QJsonObject game{{"match_id", m->id},
                         {"queue_id", m->queueId},
                         {"win", me->win},
                         {"owner_champion", me->championName},
                         {"friend_champion", other->championName}};
        if (m->season)
            game.insert("season", *m->season - 2010);
        if (m->gameMode)
            game.insert("game_mode", *m->gameMode);
        if (m->gameCreation)
            game.insert("played_at", *m->gameCreation);
        if (me->teamPosition)
            game.insert("owner_position", *me->teamPosition);
        games.append(game);
    }
    return games;
}

QJsonObject friendRecordJson(const SyntheticArchive& archive, const QString& friendPuuid, const QString& riotId) {
    const QJsonArray games = friendGamesJson(archive, friendPuuid);
    int wins = 0;
    for (const QJsonValue& game : games)
        wins += game.toObject().value("win").toBool() ? 1 : 0;
    const auto count = static_cast<int>(games.size());
    const QStringList parts = riotId.split('#');
    return {{"friend_puuid", friendPuuid},
            {"friend_name", parts.value(0)},
            {"friend_tag", parts.value(1)},
            {"total", QJsonObject{{"games", count},
                                  {"wins", wins},
                                  {"losses", count - wins},
                                  {"winrate", count > 0 ? double(wins) / count : 0.0}}},
            {"games", games}};
}

// A player's public profile: ranks in both queues and mastery of the champions they play most.
QJsonObject profileJson(const SyntheticArchive& archive, const QString& puuid, const QString& riotId) {
    QHash<qint64, int> played;
    for (const ParticipantDto& p : archive.participants())
        if (p.puuid == puuid)
            ++played[p.championId];
    QList<std::pair<int, qint64>> order;
    for (auto it = played.cbegin(); it != played.cend(); ++it)
        order.append({it.value(), it.key()});
    std::sort(order.begin(), order.end(), std::greater<>());
    QJsonArray mastery;
    for (qsizetype i = 0; i < std::min<qsizetype>(order.size(), 8); ++i)
        mastery.append(QJsonObject{{"champion_id", order[i].second},
                                   {"champion_level", std::max<qint64>(4, 10 - i)},
                                   {"champion_points", 20000 * order[i].first}});
    const QStringList parts = riotId.split('#');
    return {{"account", QJsonObject{{"puuid", puuid}, {"game_name", parts.value(0)}, {"tag_line", parts.value(1)}}},
            {"platform", "euw1"},
            {"ranks", QJsonArray{QJsonObject{{"queue_type", "RANKED_SOLO_5x5"},
                                             {"tier", "GOLD"},
                                             {"rank", "I"},
                                             {"league_points", 64},
                                             {"wins", 58},
                                             {"losses", 51}},
                                 QJsonObject{{"queue_type", "RANKED_FLEX_SR"},
                                             {"tier", "SILVER"},
                                             {"rank", "II"},
                                             {"league_points", 12},
                                             {"wins", 9},
                                             {"losses", 11}}}},
            {"mastery", mastery}};
}

// The champion list the CDN would give, so that champions are named by their ids.
QJsonObject championListJson(const SyntheticArchive& archive) {
    QJsonObject data;
    for (const ParticipantDto& p : archive.participants())
        if (!data.contains(p.championName))
            data.insert(p.championName, QJsonObject{{"id", p.championName}, {"key", QString::number(p.championId)}});
    return {{"data", data}};
}

// A plausible timeline summary of one game, seen from the owner: the gold difference drifts
// towards the winner, kills and objectives follow it, and the highlights are read off both.
QJsonObject timelineJson(const SyntheticArchive& archive, const MatchDto& match) {
    const QSet<QString> owners = archive.ownerPuuids();
    const ParticipantDto* me = nullptr;
    QStringList allies, enemies;
    for (const ParticipantDto& p : archive.participants())
        if (p.matchId == match.id && owners.contains(p.puuid))
            me = &p;
    if (!me)
        return {};
    for (const ParticipantDto& p : archive.participants())
        if (p.matchId == match.id)
            (p.teamId == me->teamId ? allies : enemies) << p.championName;
    const int enemyTeam = me->teamId == 100 ? 200 : 100;

    QRandomGenerator random(static_cast<quint32>(match.id * 7919));
    const int minutes = static_cast<int>(match.gameDuration / 60);
    const double sign = me->win ? 1.0 : -1.0;
    QJsonArray frames;
    std::vector<qint64> diffs;
    double diff = 0;
    for (int t = 0; t <= minutes; ++t) {
        // Level early, then the winner pulls away with a few swings on the way.
        const double pull = t < 8 ? 0 : sign * 260 * std::min(1.0, (t - 8) / 12.0);
        diff += pull + (random.generateDouble() - 0.5) * 900 - (t > 8 && t < 15 ? sign * 180 : 0);
        const auto d = static_cast<qint64>(std::lround(diff));
        diffs.push_back(d);
        const qint64 ownerTeamGold = 2500 + 1850 * t + d / 2;
        frames.append(QJsonObject{{"t", t},
                                  {"ownerTeamGold", ownerTeamGold},
                                  {"enemyTeamGold", ownerTeamGold - d},
                                  {"goldDiff", d},
                                  {"ownerGold", 500 + 410 * t},
                                  {"ownerCs", 8 * t - t / 3},
                                  {"ownerXp", 280 * t + 10 * t * t},
                                  {"ownerLevel", std::min(18, 1 + t * 2 / 3)}});
    }

    struct Happening {
        qint64 t;
        QJsonObject event;
    };
    std::vector<Happening> happenings;
    const auto pick = [&](const QStringList& names) {
        return names.isEmpty() ? QString() : names[static_cast<int>(random.bounded(names.size()))];
    };
    const auto side = [&](double chanceMine) { return random.generateDouble() < chanceMine; };
    const double edge = me->win ? 0.62 : 0.38;
    const int kills = 14 + static_cast<int>(random.bounded(16));
    for (int i = 0; i < kills; ++i) {
        const bool mine = side(edge);
        const qint64 t = 150 + static_cast<qint64>(random.bounded(std::max(1, minutes * 60 - 200)));
        happenings.push_back({t,
                              {{"kind", "kill"},
                               {"t", t},
                               {"team", mine ? me->teamId : enemyTeam},
                               {"mine", mine},
                               {"killer", pick(mine ? allies : enemies)},
                               {"victim", pick(mine ? enemies : allies)}}});
    }
    const char* const dragons[] = {"FIRE_DRAGON", "WATER_DRAGON", "HEXTECH_DRAGON", "CHEMTECH_DRAGON", "AIR_DRAGON"};
    for (int minute = 6; minute < minutes - 1; minute += 6) {
        const bool mine = side(edge);
        happenings.push_back({minute * 60 + 20,
                              {{"kind", "monster"},
                               {"t", minute * 60 + 20},
                               {"team", mine ? me->teamId : enemyTeam},
                               {"mine", mine},
                               {"monster", "DRAGON"},
                               {"subtype", dragons[random.bounded(5)]}}});
    }
    if (minutes > 15) {
        const bool mine = side(0.5);
        happenings.push_back({14 * 60 + 5,
                              {{"kind", "monster"},
                               {"t", 14 * 60 + 5},
                               {"team", mine ? me->teamId : enemyTeam},
                               {"mine", mine},
                               {"monster", "RIFTHERALD"}}});
    }
    if (minutes > 26)
        happenings.push_back({25 * 60 + 40,
                              {{"kind", "monster"},
                               {"t", 25 * 60 + 40},
                               {"team", me->win ? me->teamId : enemyTeam},
                               {"mine", me->win},
                               {"monster", "BARON_NASHOR"}}});
    const char* const lanes[] = {"TOP_LANE", "MID_LANE", "BOT_LANE"};
    for (int i = 0; i < 7 && minutes > 14; ++i) {
        const bool mine = side(edge);
        const qint64 t = 13 * 60 + i * (minutes - 14) * 60 / 7 + 30;
        happenings.push_back({t,
                              {{"kind", "building"},
                               {"t", t},
                               {"team", mine ? me->teamId : enemyTeam},
                               {"mine", mine},
                               {"building", "TOWER_BUILDING"},
                               {"lane", lanes[random.bounded(3)]}}});
    }
    if (minutes > 20)
        happenings.push_back({(minutes - 1) * 60,
                              {{"kind", "building"},
                               {"t", (minutes - 1) * 60},
                               {"team", me->win ? me->teamId : enemyTeam},
                               {"mine", me->win},
                               {"building", "INHIBITOR_BUILDING"},
                               {"lane", "BOT_LANE"}}});
    std::sort(happenings.begin(), happenings.end(), [](const Happening& a, const Happening& b) { return a.t < b.t; });

    QJsonArray events;
    int objectives[4][2] = {}; // dragons, barons, heralds, towers; mine, enemy
    QJsonObject firstBlood;
    for (const Happening& h : happenings) {
        events.append(h.event);
        const int who = h.event.value("mine").toBool() ? 0 : 1;
        const QString kind = h.event.value("kind").toString();
        const QString monster = h.event.value("monster").toString();
        if (kind == "kill" && firstBlood.isEmpty())
            firstBlood = QJsonObject{{"t", h.t},
                                     {"mine", h.event.value("mine")},
                                     {"killer", h.event.value("killer")},
                                     {"victim", h.event.value("victim")}};
        if (monster == "DRAGON")
            ++objectives[0][who];
        else if (monster == "BARON_NASHOR")
            ++objectives[1][who];
        else if (monster == "RIFTHERALD")
            ++objectives[2][who];
        else if (h.event.value("building").toString() == "TOWER_BUILDING")
            ++objectives[3][who];
    }
    const auto pair = [&](int i) { return QJsonObject{{"mine", objectives[i][0]}, {"enemy", objectives[i][1]}}; };
    const auto at = [&](int minute) -> QJsonValue {
        return minute < static_cast<int>(diffs.size()) ? QJsonValue(diffs[static_cast<std::size_t>(minute)])
                                                       : QJsonValue(QJsonValue::Null);
    };
    QJsonObject stats{
        {"goldDiffAt10", at(10)},
        {"goldDiffAt14", at(14)},
        {"maxGoldLead", std::max<qint64>(0, *std::max_element(diffs.begin(), diffs.end()))},
        {"maxGoldDeficit", std::min<qint64>(0, *std::min_element(diffs.begin(), diffs.end()))},
        {"objectives",
         QJsonObject{{"dragons", pair(0)}, {"barons", pair(1)}, {"heralds", pair(2)}, {"towers", pair(3)}}}};
    if (minutes >= 10)
        stats.insert("ownerCsAt10", 8 * 10 - 10 / 3);
    if (minutes >= 14)
        stats.insert("ownerCsAt14", 8 * 14 - 14 / 3);
    if (!firstBlood.isEmpty())
        stats.insert("firstBlood", firstBlood);
    return {{"ownerChampion", me->championName},
            {"ownerTeam", me->teamId},
            {"frames", frames},
            {"events", events},
            {"stats", stats}};
}

QJsonObject accountJson(const RiotAccountDto& a) {
    QJsonObject json{{"id", a.id}, {"puuid", a.puuid}, {"platform", a.platform}, {"region", a.region}};
    if (a.gameName)
        json.insert("game_name", *a.gameName);
    if (a.tagLine)
        json.insert("tag_line", *a.tagLine);
    if (a.profileIconId)
        json.insert("profile_icon_id", *a.profileIconId);
    if (a.summonerLevel)
        json.insert("summoner_level", *a.summonerLevel);
    return json;
}

void settle(int ms) {
    QElapsedTimer timer;
    timer.start();
    while (timer.elapsed() < ms) {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
        // Views a Loader replaced are deleted later; they must be gone before the next search.
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
}

bool waitUntil(const std::function<bool()>& done, int ms = 15000) {
    QElapsedTimer timer;
    timer.start();
    while (!done() && timer.elapsed() < ms)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
    return done();
}

// One run of the app on its own settings and archive.
struct Scene {
    QTemporaryDir dir;
    FakeBackend backend;
    std::unique_ptr<QSettings> settings;
    QNetworkAccessManager network;
    std::unique_ptr<ArchiveStore> store;
    std::unique_ptr<AppState> state;
    std::unique_ptr<GameImages> images;
    std::unique_ptr<QQmlApplicationEngine> engine;
    QQuickWindow* window = nullptr;

    static inline QSize windowSize{1280, 800};

    Scene(const SyntheticArchive* archive, bool signedIn, const QString& backendUrl = QString()) {
        settings = std::make_unique<QSettings>(dir.filePath("settings.ini"), QSettings::IniFormat);
        settings->setValue("backendBaseURL", backendUrl.isEmpty() ? backend.baseUrl().toString() : backendUrl);
        // Images come from a CDN this machine may not reach: point it at the loopback backend so
        // the fallbacks show at once instead of after a time-out.
        settings->setValue("quill.cdnBaseURL", backend.baseUrl().toString() + "/cdn/");
        settings->setValue("quill.mirrorVersion", 5);
        if (signedIn)
            settings->setValue("authToken", "tour-token");
        QJsonArray accounts;
        if (archive)
            for (const RiotAccountDto& account : archive->ownerAccounts())
                accounts.append(accountJson(account));
        backend.on("POST", "/api/riot-accounts/refresh", FakeResponse::json({{"riot_accounts", accounts}}));
        backend.on("GET", "/api/riot-accounts", FakeResponse::json({{"riot_accounts", accounts}}));
        backend.on("GET", "/api/sync",
                   FakeResponse::json({{"matches", QJsonArray{}},
                                       {"participants", QJsonArray{}},
                                       {"rank_snapshots", QJsonArray{}},
                                       {"performance_scores", QJsonArray{}},
                                       {"has_more", false}}));
        backend.on("GET", "/api/stats/duos",
                   FakeResponse::json({{"duos", archive ? duosJson(*archive) : QJsonArray{}}}));
        backend.on("GET", "/api/static/version", FakeResponse::json({{"version", "16.11.1"}}));
        if (archive)
            serveSocialAnswers(*archive);

        store = std::make_unique<ArchiveStore>(dir.filePath("archive.sqlite"));
        if (archive)
            archive->fill(*store);
        state = std::make_unique<AppState>(*settings, network);
        AppState::exposeToQml(state.get());
        images = std::make_unique<GameImages>(state->staticData().dataDragon());
        GameImages::exposeToQml(images.get());

        engine = std::make_unique<QQmlApplicationEngine>();
        engine->addImportPath("qrc:/qt/qml");
        engine->load(QUrl("qrc:/qt/qml/QuillFern/App/Main.qml"));
        window = qobject_cast<QQuickWindow*>(engine->rootObjects().value(0));
        if (window)
            window->resize(windowSize);
        state->bootstrap(store.get());
        waitUntil([this] { return !state->hasRunningTasks(); });
        settle(400);
    }

    ~Scene() {
        engine.reset();
        GameImages::exposeToQml(nullptr);
        images.reset();
        state.reset();
    }

    // What the social screens and the timeline ask the backend: a record for every friend, a
    // profile for every friend's Riot ID, timelines of the newest games, and the champion list.
    void serveSocialAnswers(const SyntheticArchive& archive) {
        const QStringList puuids = archive.friendPuuids();
        for (qsizetype i = 0; i < puuids.size(); ++i) {
            const QString riotId = archive.friendRiotIds().value(i);
            backend.on("GET", "/api/stats/friend/" + puuids[i],
                       FakeResponse::json(friendRecordJson(archive, puuids[i], riotId)));
            backend.on("GET", "/api/players/" + riotId + "/profile",
                       FakeResponse::json(profileJson(archive, puuids[i], riotId)));
        }
        // Older games have none, as on a server that keeps only recent timelines.
        const QList<MatchDto>& matches = archive.matches();
        for (qsizetype i = 0; i < matches.size(); ++i)
            backend.on("GET", "/api/matches/" + matches[i].matchId + "/timeline",
                       i + 40 >= matches.size() ? FakeResponse::json(timelineJson(archive, matches[i]))
                                                : FakeResponse::text(404, "This game has no timeline on this server."));
        backend.on("GET", "/api/players/Nobody#404/profile",
                   FakeResponse::text(404, "No player named Nobody#404 has been seen on this server."));
        backend.on("GET", "/cdn/16.11.1/data/en_US/champion.json", FakeResponse::json(championListJson(archive)));
    }

    // Every object of the window's scene whose type name starts with the given name, searched
    // through both visual and object children.
    QList<QObject*> findAll(const char* typeName) const {
        QList<QObject*> found;
        if (!window)
            return found;
        QList<QObject*> pending{window->contentItem()};
        QSet<QObject*> seen;
        while (!pending.isEmpty()) {
            QObject* object = pending.takeFirst();
            if (!object || seen.contains(object))
                continue;
            seen.insert(object);
            if (QString::fromLatin1(object->metaObject()->className()).startsWith(QLatin1String(typeName)))
                found.append(object);
            pending.append(object->children());
            if (auto* item = qobject_cast<QQuickItem*>(object))
                for (QQuickItem* child : item->childItems())
                    pending.append(child);
        }
        return found;
    }
    QObject* find(const char* typeName) const { return findAll(typeName).value(0); }

    // Selects a section, as a click in the sidebar would.
    void select(int section) {
        if (QObject* main = find("MainView"))
            main->setProperty("selection", section);
        settle(300);
        // Screens that fetch for themselves show their answers.
        waitUntil([this] { return !state->hasRunningTasks(); });
        settle(200);
    }

    void setFilter(HistoryModel::Filter filter) {
        if (QObject* history = find("HistoryModel"))
            history->setProperty("filter", QVariant::fromValue(filter));
        settle(300);
    }

    // Opens the detail sheet of the newest game of the user, as a click on its row would.
    void openNewestGame() { openGame(0); }

    // Opens the detail sheet of the game on one row of the history, newest first; with a category
    // chip given, of the row-th game of that category.
    void openGame(int row, const QString& categoryChip = QString()) {
        QObject* main = find("MainView");
        QObject* history = find("HistoryModel");
        if (!main || !history)
            return;
        auto* rows = history->property("rows").value<QAbstractItemModel*>();
        if (!rows)
            return;
        const int chipRole = rows->roleNames().key("categoryChip");
        for (int i = 0, seen = 0; i < rows->rowCount(); ++i) {
            if (!categoryChip.isEmpty() && rows->data(rows->index(i, 0), chipRole).toString() != categoryChip)
                continue;
            if (seen++ < row)
                continue;
            m_openGame = rows->data(rows->index(i, 0), rows->roleNames().key("matchServerId"));
            QMetaObject::invokeMethod(main, "openGame", Q_ARG(QVariant, m_openGame));
            settle(500);
            return;
        }
    }

    // Presses the detail's "Timeline" button and waits for the timeline.
    void openTimeline() {
        if (QObject* main = find("MainView"))
            QMetaObject::invokeMethod(main, "openTimeline", Q_ARG(QVariant, m_openGame));
        settle(300);
        waitUntil([this] { return !state->hasRunningTasks(); });
        settle(300);
    }

    void closeSheets() {
        // The sheets are found by their items, whose owner is the popup itself.
        for (QObject* item : findAll("QQuickPopupItem"))
            QMetaObject::invokeMethod(item->parent(), "close");
        settle(400);
    }

    // Opens the record with the first frequent duo, as a click on its row would.
    void openFirstDuo() {
        QObject* friends = find("FriendsModel");
        if (!friends)
            return;
        auto* duos = friends->property("duos").value<QAbstractItemModel*>();
        if (!duos || duos->rowCount() == 0)
            return;
        const QModelIndex first = duos->index(0, 0);
        QMetaObject::invokeMethod(friends, "lookupPuuid",
                                  Q_ARG(QString, first.data(duos->roleNames().key("puuid")).toString()),
                                  Q_ARG(QString, first.data(duos->roleNames().key("name")).toString()));
        waitUntil([this] { return !state->hasRunningTasks(); });
        settle(400);
    }

    // Types a Riot ID into the search field and presses "Search".
    void searchFor(const QString& riotId) {
        QObject* search = find("SearchModel");
        if (!search)
            return;
        search->setProperty("riotId", riotId);
        QMetaObject::invokeMethod(search, "search");
        waitUntil([this] { return !state->hasRunningTasks(); });
        settle(400);
    }

    QVariant m_openGame;

    // Types an e-mail and password into the sign-in form and presses its button.
    void signIn(const QString& email, const QString& password) {
        QObject* form = find("LoginForm");
        if (!form)
            return;
        form->setProperty("email", email);
        form->setProperty("password", password);
        QMetaObject::invokeMethod(form, "submit");
        waitUntil([this] { return !state->hasRunningTasks(); });
        settle(300);
    }

    // Picks a queue on the rank screen, as its picker would.
    void setRankQueue(RankModel::Queue queue) {
        // Screens left earlier are only deleted later; let them go so that the one in view is found.
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        if (QObject* rank = find("RankModel"))
            rank->setProperty("queue", QVariant::fromValue(queue));
        settle(300);
    }

    // The overlay screen: off, then switched on with no game running, then with a game whose
    // window and live data the tour makes up; the strip is pictured over a stand-in of that window.
    bool tourOverlay(const QDir& out) {
        bool ok = true;
        select(6);
        ok &= shoot(out.filePath("overlay-off.png"));

        OverlayManager& overlay = state->overlay();
        auto windows = std::make_shared<FakeWindowList>();
        FakeLiveGame live;
        const QRectF screen(0, 0, 1920, 1080);
        const QRectF game(320, 180, 1280, 720);
        overlay.setSources({windows, [screen] { return WindowLocator::Screens{{screen}, screen}; }, live.port()});
        overlay.setEnabled(true);
        settle(300);
        ok &= shoot(out.filePath("overlay-waiting.png"));

        // Ahri at level 9 with Q 4, W 1, E 3 and her ultimate: Q is the one to level.
        live.setAnswer(FakeResponse::json(FakeLiveGame::game("Ahri", 9, {{"Q", 4}, {"W", 1}, {"E", 3}, {"R", 1}})));
        windows->list = QList{WindowListSource::Window{QStringLiteral("League of Legends"), 0, game}};
        waitUntil([&overlay] { return overlay.controller().isShowing(); });
        settle(400);
        ok &= shoot(out.filePath("overlay-live.png"));
        ok &= shootStrip(overlay.controller(), game, out.filePath("overlay-strip.png"));
        overlay.setEnabled(false);
        settle(200);
        return ok;
    }

    // The strip's window over a picture standing in for the game window, where the overlay put it.
    static bool shootStrip(const OverlayController& controller, const QRectF& game, const QString& path) {
        // The window's own picture, transparency included, painted as the window paints itself.
        const StripWindow* panel = controller.panel();
        const QImage strip = panel ? panel->view().image() : QImage();
        QImage picture(game.size().toSize(), QImage::Format_ARGB32_Premultiplied);
        QPainter painter(&picture);
        QLinearGradient ground(0, 0, 0, picture.height());
        ground.setColorAt(0, QColor(24, 52, 46));
        ground.setColorAt(1, QColor(58, 70, 38));
        painter.fillRect(picture.rect(), ground);
        painter.setPen(Qt::NoPen);
        painter.setBrush(QColor(90, 96, 60));
        painter.drawEllipse(QPointF(picture.width() * 0.3, picture.height() * 0.62), 260, 120);
        painter.setBrush(QColor(40, 84, 120));
        painter.drawRect(QRectF(0, picture.height() * 0.45, picture.width(), 46));
        painter.setBrush(QColor(12, 14, 20, 220));
        painter.drawRect(QRectF(picture.width() / 2 - 260, picture.height() - 90, 520, 90)); // the game's HUD
        painter.setPen(QColor(255, 255, 255, 120));
        painter.drawText(QRectF(0, picture.height() - 90, picture.width(), 90), Qt::AlignCenter,
                         QStringLiteral("stand-in game window (1280 × 720)"));
        const QPointF origin = QPointF(panel ? panel->position() : QPoint()) - game.topLeft();
        painter.drawImage(origin, strip);
        painter.end();
        const bool saved = !strip.isNull() && picture.save(path);
        std::printf("%s %s\n", saved ? "wrote" : "FAILED", qPrintable(path));
        return saved;
    }

    bool shoot(const QString& path) {
        if (!window)
            return false;
        const QImage image = window->grabWindow();
        const bool ok = !image.isNull() && image.save(path);
        std::printf("%s %s\n", ok ? "wrote" : "FAILED", qPrintable(path));
        return ok;
    }
};

} // namespace

int main(int argc, char* argv[]) {
    QGuiApplication app(argc, argv);
    if (argc < 2) {
        std::fprintf(stderr, "usage: screenshot_tour OUTPUT_FOLDER [GAMES] [WIDTHxHEIGHT]\n");
        return 2;
    }
    const QDir out(QString::fromLocal8Bit(argv[1]));
    QDir().mkpath(out.path());
    const int games = argc > 2 ? QByteArray(argv[2]).toInt() : 400;
    if (argc > 3) {
        const QList<QByteArray> size = QByteArray(argv[3]).split('x');
        if (size.size() == 2 && size[0].toInt() > 0 && size[1].toInt() > 0)
            Scene::windowSize = QSize(size[0].toInt(), size[1].toInt());
    }

    QQuickStyle::setStyle("Basic");
    Fonts::load();

    SyntheticArchiveOptions options;
    options.games = games;
    const SyntheticArchive archive(options);

    bool ok = true;
    {
        Scene signIn(nullptr, false);
        ok &= signIn.shoot(out.filePath("signin.png"));
    }
    {
        // A fresh machine with no backend running: the first sign-in meets a refused connection.
        Scene noBackend(nullptr, false, QStringLiteral("http://127.0.0.1:1"));
        noBackend.signIn(QStringLiteral("ada@example.org"), QStringLiteral("correct-horse"));
        ok &= noBackend.shoot(out.filePath("signin-error.png"));
    }
    {
        // What a player sees when the archive cannot be opened.
        QQmlApplicationEngine engine;
        engine.addImportPath("qrc:/qt/qml");
        engine.setInitialProperties(
            {{"message", QStringLiteral("Failed to create the local store: file is not a database")}});
        engine.load(QUrl("qrc:/qt/qml/QuillFern/App/StoreFailure.qml"));
        if (auto* window = qobject_cast<QQuickWindow*>(engine.rootObjects().value(0))) {
            settle(300);
            const QString path = out.filePath("store-failure.png");
            const bool saved = window->grabWindow().save(path);
            std::printf("%s %s\n", saved ? "wrote" : "FAILED", qPrintable(path));
            ok &= saved;
        } else {
            ok = false;
        }
    }
    {
        Scene empty(nullptr, true);
        ok &= empty.shoot(out.filePath("overview-empty.png"));
        empty.select(1);
        ok &= empty.shoot(out.filePath("history-empty.png"));
        empty.select(2);
        ok &= empty.shoot(out.filePath("champions-empty.png"));
        empty.select(3);
        ok &= empty.shoot(out.filePath("rank-empty.png"));
        empty.select(4);
        ok &= empty.shoot(out.filePath("friends-empty.png"));
    }
    {
        Scene full(&archive, true);
        const char* names[] = {"overview", "history", "champions", "rank", "friends", "search"};
        for (int section = 0; section < 6; ++section) {
            full.select(section);
            ok &= full.shoot(out.filePath(QString::fromLatin1(names[section]) + ".png"));
        }
        full.select(3);
        full.setRankQueue(RankModel::Queue::Flex);
        ok &= full.shoot(out.filePath("rank-flex.png"));
        full.select(1);
        full.setFilter(HistoryModel::Filter::Ranked);
        ok &= full.shoot(out.filePath("history-filtered.png"));
        full.setFilter(HistoryModel::Filter::All);
        full.openNewestGame();
        ok &= full.shoot(out.filePath("detail.png"));
        full.closeSheets();

        // The timeline of the newest ranked game, then of an older one the backend has none of.
        full.openGame(0, QStringLiteral("RANKED"));
        full.openTimeline();
        ok &= full.shoot(out.filePath("timeline.png"));
        full.closeSheets();
        full.openGame(60);
        full.openTimeline();
        ok &= full.shoot(out.filePath("timeline-error.png"));
        full.closeSheets();

        full.select(4);
        full.openFirstDuo();
        ok &= full.shoot(out.filePath("friend-detail.png"));
        // A proxy in front of a stopped backend answers with its own page.
        full.backend.on("GET", "/api/stats/duos",
                        FakeResponse::text(502, "<html><body><h1>502 Bad Gateway</h1></body></html>"));
        full.select(0);
        full.select(4);
        ok &= full.shoot(out.filePath("friends-error.png"));

        full.select(5);
        full.searchFor(archive.friendRiotIds().value(0));
        ok &= full.shoot(out.filePath("search-profile.png"));
        full.searchFor(QStringLiteral("Nobody#404"));
        ok &= full.shoot(out.filePath("search-error.png"));

        ok &= full.tourOverlay(out);
    }
    return ok ? 0 : 1;
}
