// Reading sync pages into a mirror, and comparing mirrors.

#include "mirror_archive.h"

#include <simdjson.h>

#include <stdexcept>

namespace qf::bench {

namespace {

using simdjson::dom::array;
using simdjson::dom::element;

array listOf(element page, const char* key) {
    array list;
    if (page[key].get(list) != simdjson::SUCCESS)
        throw std::runtime_error(std::string("a sync page without its \"") + key + "\" list");
    return list;
}

int64_t numberOf(element row, const char* key) {
    int64_t value = 0;
    if (row[key].get(value) != simdjson::SUCCESS)
        throw std::runtime_error(std::string("a row without a numeric \"") + key + "\"");
    return value;
}

template <class Map> std::string compareRows(const char* what, const Map& mine, const Map& theirs) {
    if (mine.size() != theirs.size())
        return std::string(what) + ": " + std::to_string(mine.size()) + " against " + std::to_string(theirs.size());
    for (auto a = mine.begin(), b = theirs.begin(); a != mine.end(); ++a, ++b) {
        if (a->first != b->first)
            return std::string(what) + ": id " + std::to_string(a->first) + " against id " + std::to_string(b->first);
        if (a->second != b->second)
            return std::string(what) + " " + std::to_string(a->first) + " differs";
    }
    return {};
}

} // namespace

SyncPageRows countSyncPageRows(std::string_view body) {
    simdjson::dom::parser parser;
    element page;
    if (parser.parse(body.data(), body.size()).get(page) != simdjson::SUCCESS)
        throw std::runtime_error("a sync page that is not JSON");
    SyncPageRows rows;
    rows.matches = int64_t(listOf(page, "matches").size());
    rows.participants = int64_t(listOf(page, "participants").size());
    rows.rankSnapshots = int64_t(listOf(page, "rank_snapshots").size());
    rows.scores = int64_t(listOf(page, "performance_scores").size());
    return rows;
}

void MirrorArchive::apply(std::string_view body) {
    simdjson::dom::parser parser;
    element page;
    if (parser.parse(body.data(), body.size()).get(page) != simdjson::SUCCESS)
        throw std::runtime_error("a sync page that is not JSON");

    for (const element match : listOf(page, "matches")) {
        const int64_t id = numberOf(match, "id");
        m_matches[id] = simdjson::minify(match);
        // The page carries every row of its matches: what was there before goes.
        for (const int64_t row : m_rowsOfMatch[id])
            m_participants.erase(row);
        m_rowsOfMatch[id].clear();
    }
    for (const element row : listOf(page, "participants")) {
        const int64_t id = numberOf(row, "id");
        m_participants[id] = simdjson::minify(row);
        m_rowsOfMatch[numberOf(row, "match_id")].insert(id);
    }
    for (const element score : listOf(page, "performance_scores"))
        m_scores[numberOf(score, "id")] = simdjson::minify(score);
    for (const element snapshot : listOf(page, "rank_snapshots"))
        m_snapshots[numberOf(snapshot, "id")] = simdjson::minify(snapshot);
}

std::string MirrorArchive::differenceFrom(const MirrorArchive& other) const {
    for (std::string d : {compareRows("matches", m_matches, other.m_matches),
                          compareRows("participants", m_participants, other.m_participants),
                          compareRows("performance scores", m_scores, other.m_scores),
                          compareRows("rank snapshots", m_snapshots, other.m_snapshots)})
        if (!d.empty())
            return d;
    return {};
}

} // namespace qf::bench
