#pragma once

#include <map>
#include <string>
#include <vector>

// The benchmarks' command lines: "--name value" pairs, each name one the program knows.

namespace qf::bench {

class BenchArgs {
public:
    // Throws std::invalid_argument (with the usage text) for an unknown name, a name without a
    // value, or --help.
    BenchArgs(int argc, char** argv, const std::vector<std::string>& known, std::string usage);

    [[nodiscard]] std::string text(const std::string& name, const std::string& fallback) const;
    [[nodiscard]] int integer(const std::string& name, int fallback) const;
    // "a,b,c" as a list.
    [[nodiscard]] std::vector<std::string> list(const std::string& name, const std::string& fallback) const;

private:
    std::map<std::string, std::string> m_values;
    std::string m_usage;
};

} // namespace qf::bench
