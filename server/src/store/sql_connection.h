#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

// The one seam between the server and its two database engines. Everything above it speaks
// portable SQL with "?" placeholders; an engine's connection translates what differs.

namespace qf {

using SqlValue = std::variant<std::monostate, int64_t, double, std::string>;

inline SqlValue sqlNull() {
    return std::monostate{};
}
inline SqlValue sqlOpt(const std::optional<std::string>& v) {
    return v ? SqlValue(*v) : sqlNull();
}
inline SqlValue sqlOpt(const std::optional<int64_t>& v) {
    return v ? SqlValue(*v) : sqlNull();
}
inline SqlValue sqlOpt(const std::optional<double>& v) {
    return v ? SqlValue(*v) : sqlNull();
}

// A failure of the database itself (connection lost, disk full, constraint broken). The HTTP
// layer answers it with 503, never with the engine's text.
class StoreError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// A unique constraint refused a write (for example a second account with the same e-mail).
class UniqueViolation : public StoreError {
public:
    using StoreError::StoreError;
};

// The rows of one query, all read at once. Cells are typed as the engine gives them: SQLite by
// its storage class, PostgreSQL by the column's type (integers, floating point, the rest text).
class SqlResult {
public:
    SqlResult() = default;
    SqlResult(int columns, std::vector<SqlValue> cells) : m_columns(columns), m_cells(std::move(cells)) {}

    [[nodiscard]] int columns() const { return m_columns; }
    [[nodiscard]] size_t rows() const { return m_columns ? m_cells.size() / m_columns : 0; }
    [[nodiscard]] bool empty() const { return rows() == 0; }

    [[nodiscard]] const SqlValue& at(size_t row, int column) const { return m_cells[row * m_columns + column]; }
    [[nodiscard]] bool isNull(size_t row, int column) const {
        return std::holds_alternative<std::monostate>(at(row, column));
    }
    // Conversions are lenient: an integer read as real widens, a real read as integer truncates,
    // NULL reads as 0, "" or absent.
    [[nodiscard]] int64_t integer(size_t row, int column) const;
    [[nodiscard]] double real(size_t row, int column) const;
    [[nodiscard]] std::string text(size_t row, int column) const;
    [[nodiscard]] std::optional<int64_t> optInteger(size_t row, int column) const;
    [[nodiscard]] std::optional<double> optReal(size_t row, int column) const;
    [[nodiscard]] std::optional<std::string> optText(size_t row, int column) const;

private:
    int m_columns = 0;
    std::vector<SqlValue> m_cells;
};

enum class SqlEngine { Sqlite, Postgres };

// One connection, used by one thread at a time. Statements are prepared once per connection and
// reused. Errors throw StoreError (UniqueViolation for a unique constraint).
class SqlConnection {
public:
    virtual ~SqlConnection() = default;

    [[nodiscard]] virtual SqlEngine engine() const = 0;

    // One statement with "?" placeholders, bound in order.
    virtual SqlResult query(std::string_view sql, std::span<const SqlValue> params = {}) = 0;
    SqlResult query(std::string_view sql, std::initializer_list<SqlValue> params) {
        return query(sql, std::span<const SqlValue>(params.begin(), params.size()));
    }

    // A read transaction sees one consistent snapshot of the database.
    virtual void beginRead() = 0;
    // Write transactions are serialised across every connection and every server process on
    // the same database, so change sequence numbers become visible in the order they are drawn:
    // a reader that sees number N has already seen every number below it.
    virtual void beginWrite() = 0;
    virtual void commit() = 0;
    virtual void rollback() = 0;

    // The next number of the one change order. Only inside a write transaction.
    virtual int64_t nextChangeSeq() = 0;
};

} // namespace qf
