#pragma once

#include <filesystem>
#include <string>

// A scratch folder under /tmp for one benchmark run: databases, page files, nginx's prefix,
// logs. Removed when the run ends, unless QFS_BENCH_KEEP is set (to read the logs afterwards).

namespace qf::bench {

class TempFolder {
public:
    explicit TempFolder(const std::string& prefix);
    ~TempFolder();
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    [[nodiscard]] const std::filesystem::path& path() const { return m_path; }
    // A sub-folder, created (readable by every user: nginx's workers and PostgreSQL run as others).
    [[nodiscard]] std::filesystem::path sub(const std::string& name) const;

private:
    std::filesystem::path m_path;
};

} // namespace qf::bench
