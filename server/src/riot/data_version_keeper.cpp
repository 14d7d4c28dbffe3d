#include "riot/data_version_keeper.h"

#include <fstream>
#include <iostream>

namespace qf {

namespace {

// Versions are short dotted numbers; anything else in the file is not one of ours.
bool plausibleVersion(const std::string& v) {
    return !v.empty() && v.size() <= 32 && v.find_first_not_of("0123456789.") == std::string::npos;
}

} // namespace

DataVersionKeeper::DataVersionKeeper(const RiotClient& riot, std::string fallback, std::filesystem::path file)
    : m_riot(riot), m_file(std::move(file)), m_version(std::move(fallback)) {
    if (m_file.empty())
        return;
    std::ifstream in(m_file);
    std::string kept;
    if (std::getline(in, kept) && plausibleVersion(kept))
        m_version = kept;
}

DataVersionKeeper::~DataVersionKeeper() {
    stop();
}

std::string DataVersionKeeper::current() const {
    const std::lock_guard lock(m_mutex);
    return m_version;
}

bool DataVersionKeeper::refresh() {
    const RiotResult<std::string> newest = m_riot.newestDataVersion();
    if (!newest.ok() || !plausibleVersion(newest.value))
        return false;
    {
        const std::lock_guard lock(m_mutex);
        if (m_version == newest.value)
            return true;
        m_version = newest.value;
    }
    if (!m_file.empty()) {
        // Written aside and renamed: a crash leaves the old version or the new, never half.
        const std::filesystem::path aside = m_file.string() + ".new";
        {
            std::ofstream out(aside, std::ios::trunc);
            out << newest.value << "\n";
        }
        std::error_code ignored;
        std::filesystem::rename(aside, m_file, ignored);
    }
    std::cout << "Static data version: " << newest.value << std::endl;
    return true;
}

void DataVersionKeeper::start(std::chrono::seconds every) {
    if (m_thread.joinable())
        return;
    m_thread = std::thread([this, every] {
        for (;;) {
            refresh();
            std::unique_lock lock(m_mutex);
            if (m_wake.wait_for(lock, every, [this] { return m_stopping; }))
                return;
        }
    });
}

void DataVersionKeeper::stop() {
    {
        const std::lock_guard lock(m_mutex);
        m_stopping = true;
    }
    m_wake.notify_all();
    if (m_thread.joinable())
        m_thread.join();
}

} // namespace qf
