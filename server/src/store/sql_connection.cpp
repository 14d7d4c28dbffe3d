// Reading typed values out of a query's cells, whatever storage class the engine chose.

#include "store/sql_connection.h"

#include <charconv>
#include <cmath>
#include <limits>

namespace qf {

namespace {

int64_t truncated(double v) {
    // Casting NaN or a value outside int64 is undefined; clamp instead.
    if (std::isnan(v))
        return 0;
    if (v >= 9223372036854775807.0)
        return std::numeric_limits<int64_t>::max();
    if (v <= -9223372036854775808.0)
        return std::numeric_limits<int64_t>::min();
    return static_cast<int64_t>(v);
}

int64_t integerOfText(const std::string& s) {
    int64_t v = 0;
    auto [end, ec] = std::from_chars(s.data(), s.data() + s.size(), v);
    if (ec == std::errc() && end == s.data() + s.size())
        return v;
    // "3.0" or "1e3": an integer written as a real.
    double d = 0;
    auto [dend, dec] = std::from_chars(s.data(), s.data() + s.size(), d);
    return dec == std::errc() ? truncated(d) : 0;
}

double realOfText(const std::string& s) {
    double d = 0;
    auto [end, ec] = std::from_chars(s.data(), s.data() + s.size(), d);
    return ec == std::errc() ? d : 0.0;
}

std::string textOfReal(double v) {
    char buffer[32];
    auto [end, ec] = std::to_chars(buffer, buffer + sizeof buffer, v);
    return ec == std::errc() ? std::string(buffer, end) : std::string();
}

} // namespace

int64_t SqlResult::integer(size_t row, int column) const {
    const SqlValue& v = at(row, column);
    if (auto i = std::get_if<int64_t>(&v))
        return *i;
    if (auto d = std::get_if<double>(&v))
        return truncated(*d);
    if (auto s = std::get_if<std::string>(&v))
        return integerOfText(*s);
    return 0;
}

double SqlResult::real(size_t row, int column) const {
    const SqlValue& v = at(row, column);
    if (auto d = std::get_if<double>(&v))
        return *d;
    if (auto i = std::get_if<int64_t>(&v))
        return static_cast<double>(*i);
    if (auto s = std::get_if<std::string>(&v))
        return realOfText(*s);
    return 0.0;
}

std::string SqlResult::text(size_t row, int column) const {
    const SqlValue& v = at(row, column);
    if (auto s = std::get_if<std::string>(&v))
        return *s;
    if (auto i = std::get_if<int64_t>(&v))
        return std::to_string(*i);
    if (auto d = std::get_if<double>(&v))
        return textOfReal(*d);
    return {};
}

std::optional<int64_t> SqlResult::optInteger(size_t row, int column) const {
    if (isNull(row, column))
        return std::nullopt;
    return integer(row, column);
}

std::optional<double> SqlResult::optReal(size_t row, int column) const {
    if (isNull(row, column))
        return std::nullopt;
    return real(row, column);
}

std::optional<std::string> SqlResult::optText(size_t row, int column) const {
    if (isNull(row, column))
        return std::nullopt;
    return text(row, column);
}

} // namespace qf
