// Reading the benchmarks' command lines.

#include "bench_args.h"

#include <algorithm>
#include <charconv>
#include <stdexcept>

namespace qf::bench {

BenchArgs::BenchArgs(int argc, char** argv, const std::vector<std::string>& known, std::string usage)
    : m_usage(std::move(usage)) {
    for (int i = 1; i < argc; ++i) {
        const std::string arg = argv[i];
        if (arg.rfind("--", 0) != 0 || std::find(known.begin(), known.end(), arg.substr(2)) == known.end())
            throw std::invalid_argument(arg == "--help" || arg == "-h" ? m_usage
                                                                       : "unknown option " + arg + "\n" + m_usage);
        if (i + 1 >= argc)
            throw std::invalid_argument(arg + " needs a value\n" + m_usage);
        m_values[arg.substr(2)] = argv[++i];
    }
}

std::string BenchArgs::text(const std::string& name, const std::string& fallback) const {
    const auto it = m_values.find(name);
    return it == m_values.end() ? fallback : it->second;
}

int BenchArgs::integer(const std::string& name, int fallback) const {
    const auto it = m_values.find(name);
    if (it == m_values.end())
        return fallback;
    int value = 0;
    const std::string& t = it->second;
    const auto [end, error] = std::from_chars(t.data(), t.data() + t.size(), value);
    if (error != std::errc() || end != t.data() + t.size() || value <= 0)
        throw std::invalid_argument("--" + name + " needs a positive whole number\n" + m_usage);
    return value;
}

std::vector<std::string> BenchArgs::list(const std::string& name, const std::string& fallback) const {
    const std::string all = text(name, fallback);
    std::vector<std::string> out;
    size_t start = 0;
    while (start <= all.size()) {
        const size_t comma = std::min(all.find(',', start), all.size());
        if (comma > start)
            out.push_back(all.substr(start, comma - start));
        start = comma + 1;
    }
    return out;
}

} // namespace qf::bench
