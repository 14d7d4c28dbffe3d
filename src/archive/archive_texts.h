#pragma once

#include "archive/player_name.h"
#include "archive/shared_text.h"

#include <memory>
#include <optional>
#include <type_traits>
#include <vector>

class SqliteDatabase;
class SqliteStatement;

// The archive file's table of the players' texts, which the participant rows name by number.
//
// A 20,000-game archive holds 242,000 player rows but only some 200,000 distinct texts among
// their 1.9 million: a player's id and name come back in every game they played, a champion's
// name in thousands. Kept once each and named by number, a start reads each text once, in
// order, and then only integers, where it would otherwise look every one of them up again; the
// file is a third smaller too.
//
// Texts are added inside the writer's transaction and, like the process's shared texts, never
// removed: a game sent again brings back the same texts. A failed transaction takes its new
// texts back out of the table in memory as well, so that no later row names a text the file
// lost.
class ArchiveTexts {
public:
    explicit ArchiveTexts(SqliteDatabase& database);
    ~ArchiveTexts();
    ArchiveTexts(const ArchiveTexts&) = delete;
    ArchiveTexts& operator=(const ArchiveTexts&) = delete;

    // Reads every text of the file.
    void load();
    [[nodiscard]] qsizetype size() const { return static_cast<qsizetype>(m_texts.size()); }

    // The text of a number the rows hold: absent for none, the empty text for a number the
    // table lacks (a damaged file: the row is still shown). Safe on several threads at once.
    [[nodiscard]] SharedText text(std::optional<qint64> number) const;
    // The same for a player's name, with its lower-case hash, which the table keeps while a
    // start reads the rows: a name's own hash lies with its bytes, a cache miss away.
    [[nodiscard]] PlayerName name(std::optional<qint64> number) const;
    // The start has read every row: the hashes kept for it go.
    void loaded();
    // The number of text, adding the text to the file when it is new; none for an absent text.
    // Only inside the writer's open transaction, which must end in committed() or rolledBack().
    [[nodiscard]] std::optional<qint64> numberOf(SharedText text);
    void committed();
    void rolledBack();

private:
    SqliteDatabase& m_database;
    // Texts by number. Numbers this class gives run 1, 2, 3...: the text of number n is
    // m_texts[n - 1]. A file whose numbers are not so (edited by hand) keeps them in m_ids, in
    // order, beside the texts.
    std::vector<SharedText> m_texts;
    std::vector<qint64> m_ids;
    std::vector<quint32> m_lowerCaseHashes; // of m_texts, until loaded()
    // Numbers by text, made at the first write (a start only reads): an open-addressed table of
    // m_texts' indexes plus one (0: a free slot), placed by their shared ids and at most half
    // full. A sync asks it for every text of every row; a sorted index took a cache miss per
    // step of its search, a QHash of texts and numbers four times the room.
    void index();
    [[nodiscard]] static quint64 mix(quint32 sharedId) { return quint64(sharedId) * 0x9E3779B97F4A7C15ull; }
    std::vector<quint32> m_slots;
    // The texts a sync names row after row (champions, positions, tiers, the user and friends)
    // answered without the table, a cache miss away: the last number found for each of a few
    // thousand places. A rollback empties it, as the numbers of its texts are given again.
    struct Recent {
        quint32 sharedId = 0;
        qint64 number = 0;
    };
    static constexpr unsigned recentBits = 12;
    std::vector<Recent> m_recent;
    unsigned m_slotShift = 64;
    std::size_t m_committed = 0;
    std::unique_ptr<SqliteStatement> m_insert;
};

// The field types that are texts.
template <class Field>
inline constexpr bool isTextField = std::is_same_v<Field, SharedText> || std::is_same_v<Field, PlayerName> ||
                                    std::is_same_v<Field, QString> || std::is_same_v<Field, std::optional<QString>>;
