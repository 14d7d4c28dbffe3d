#pragma once

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <string_view>

// What the app keeps of a user's archive, rebuilt from sync pages the way the app applies them:
// matches, scores and rank snapshots by id, and a page's participant rows replacing those of
// its matches. Rows are kept as their minified JSON, so two mirrors compare field by field.

namespace qf::bench {

struct SyncPageRows {
    int64_t matches = 0;
    int64_t participants = 0;
    int64_t rankSnapshots = 0;
    int64_t scores = 0;
    [[nodiscard]] int64_t total() const { return matches + participants + rankSnapshots + scores; }
};

// The rows one page carries. Throws std::runtime_error when it is not a sync page.
[[nodiscard]] SyncPageRows countSyncPageRows(std::string_view body);

class MirrorArchive {
public:
    // Throws std::runtime_error when body is not a sync page.
    void apply(std::string_view body);

    [[nodiscard]] size_t matches() const { return m_matches.size(); }
    [[nodiscard]] size_t participants() const { return m_participants.size(); }
    [[nodiscard]] size_t scores() const { return m_scores.size(); }
    [[nodiscard]] size_t rankSnapshots() const { return m_snapshots.size(); }

    // The first difference between two mirrors in words, or "" when they hold the same rows.
    [[nodiscard]] std::string differenceFrom(const MirrorArchive& other) const;

private:
    std::map<int64_t, std::string> m_matches;
    std::map<int64_t, std::string> m_participants;
    std::map<int64_t, std::set<int64_t>> m_rowsOfMatch;
    std::map<int64_t, std::string> m_scores;
    std::map<int64_t, std::string> m_snapshots;
};

} // namespace qf::bench
