#pragma once

#include "backend/account_records.h"
#include "backend/archive_records.h"

#include <QByteArray>
#include <QList>
#include <QSet>
#include <QString>
#include <QStringList>
#include <vector>

class ArchiveStore;

struct SyntheticArchiveOptions {
    int games = 20'000;
    quint64 seed = 20240110;
    int gamesPerPage = 300;
    // Rank snapshots of the owner, solo and flex together; -1 takes one per ten games.
    int rankSnapshots = -1;
};

// A made-up but plausible archive of one player: ranked, normal, ARAM, mayhem, arena and rotating
// mode games over two seasons, ten players each (the owner, a circle of recurring friends and
// strangers), one performance score per game and the owner's rank over time. The same seed always
// gives the same archive, byte for byte.
//
// It serves three needs: backend sync pages (for the sync benchmark and tests), the records
// themselves (for statistics benchmarks) and a filled ArchiveStore (for screens and screenshots).
class SyntheticArchive {
public:
    static constexpr qint64 ownerAccountId = 1;

    explicit SyntheticArchive(SyntheticArchiveOptions options = {});

    [[nodiscard]] const SyntheticArchiveOptions& options() const { return m_options; }

    // The owner's linked Riot account(s), as "riot-accounts" would answer.
    [[nodiscard]] const QList<RiotAccountDto>& ownerAccounts() const { return m_accounts; }
    [[nodiscard]] QSet<QString> ownerPuuids() const;
    // The recurring team-mates: their puuids and their game names in lower case.
    [[nodiscard]] QStringList friendPuuids() const;
    [[nodiscard]] QSet<QString> friendGameNames() const;
    // Their Riot IDs ("Name#TAG"), in the order of friendPuuids().
    [[nodiscard]] QStringList friendRiotIds() const { return m_friendRiotIds; }

    // The archive as decoded backend records, oldest game first. Every game has ten
    // participants in match order (blue side first) and one score of the owner.
    [[nodiscard]] const QList<MatchDto>& matches() const { return m_matches; }
    [[nodiscard]] const QList<ParticipantDto>& participants() const { return m_participants; }
    [[nodiscard]] const QList<PerformanceScoreDto>& performanceScores() const { return m_scores; }
    [[nodiscard]] const QList<RankSnapshotDto>& rankSnapshots() const { return m_snapshots; }
    [[nodiscard]] qsizetype recordCount() const;

    // The archive as the backend's "sync" answers, oldest first, in snake_case JSON. Page
    // pageCount() is the empty final page a later pull gets. A page is asked for with the
    // cursor of the page before it; the first page needs none.
    [[nodiscard]] int pageCount() const;
    [[nodiscard]] QByteArray pageBody(int page) const;
    [[nodiscard]] static QString cursorBefore(int page);
    // The page a cursor asks for; an empty cursor gives 0, an unknown one -1.
    [[nodiscard]] int pageForCursor(const QString& cursor) const;

    // Inserts every record into an empty store, as a full sync would leave it, and saves.
    void fill(ArchiveStore& store) const;

private:
    struct Generator;

    SyntheticArchiveOptions m_options;
    QList<RiotAccountDto> m_accounts;
    QStringList m_friendPuuids;
    QStringList m_friendNames;
    QStringList m_friendRiotIds;
    QList<MatchDto> m_matches;
    QList<ParticipantDto> m_participants;
    QList<PerformanceScoreDto> m_scores;
    QList<RankSnapshotDto> m_snapshots;
    std::vector<int> m_snapshotGame; // the game after which each snapshot was taken
};
