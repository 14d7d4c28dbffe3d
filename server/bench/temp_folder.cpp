// Scratch folders for the benchmarks.

#include "temp_folder.h"

#include <cstdlib>
#include <iostream>
#include <stdexcept>
#include <sys/stat.h>

namespace qf::bench {

namespace fs = std::filesystem;

TempFolder::TempFolder(const std::string& prefix) {
    std::string pattern = (fs::temp_directory_path() / (prefix + "-XXXXXX")).string();
    if (!mkdtemp(pattern.data()))
        throw std::runtime_error("cannot create a scratch folder under " + fs::temp_directory_path().string());
    m_path = pattern;
    // mkdtemp makes it private; the other users' processes must reach the folders inside.
    chmod(m_path.c_str(), 0755);
}

TempFolder::~TempFolder() {
    if (std::getenv("QFS_BENCH_KEEP")) {
        std::cerr << "kept " << m_path.string() << "\n";
        return;
    }
    std::error_code ignored;
    fs::remove_all(m_path, ignored);
}

fs::path TempFolder::sub(const std::string& name) const {
    const fs::path p = m_path / name;
    fs::create_directories(p);
    chmod(p.c_str(), 0755);
    return p;
}

} // namespace qf::bench
