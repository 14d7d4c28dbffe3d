// PostgreSQL behind the SqlConnection seam, through libpq.

#include "store/postgres/postgres_connection.h"

#include <libpq-fe.h>

#include <charconv>
#include <cmath>
#include <cstring>
#include <memory>

namespace qf {

namespace {

// Type oids of the built-in types whose values are read as numbers (pg_type.h).
constexpr Oid kBoolOid = 16;
constexpr Oid kInt8Oid = 20;
constexpr Oid kInt2Oid = 21;
constexpr Oid kInt4Oid = 23;
constexpr Oid kOidOid = 26;
constexpr Oid kFloat4Oid = 700;
constexpr Oid kFloat8Oid = 701;
constexpr Oid kNumericOid = 1700;

constexpr const char* kUniqueViolation = "23505";

std::string excerpt(std::string_view sql) {
    constexpr size_t kMax = 80;
    std::string s(sql.substr(0, kMax));
    for (char& c : s)
        if (c == '\n' || c == '\t')
            c = ' ';
    if (sql.size() > kMax)
        s += "…";
    return s;
}

struct ResultDeleter {
    void operator()(PGresult* r) const { PQclear(r); }
};
using Result = std::unique_ptr<PGresult, ResultDeleter>;

std::string trimmed(const char* message) {
    std::string s = message ? message : "";
    while (!s.empty() && (s.back() == '\n' || s.back() == ' '))
        s.pop_back();
    return s;
}

// Throws for a result that is not a success, UniqueViolation for a unique constraint.
void check(PGconn* conn, const PGresult* result, std::string_view sql) {
    ExecStatusType status = result ? PQresultStatus(result) : PGRES_FATAL_ERROR;
    if (status == PGRES_COMMAND_OK || status == PGRES_TUPLES_OK)
        return;
    std::string message = "PostgreSQL: " + trimmed(result ? PQresultErrorMessage(result) : PQerrorMessage(conn)) +
                          " (" + excerpt(sql) + ")";
    const char* state = result ? PQresultErrorField(result, PG_DIAG_SQLSTATE) : nullptr;
    if (state && std::strcmp(state, kUniqueViolation) == 0)
        throw UniqueViolation(message);
    throw StoreError(message);
}

std::string textOfReal(double v) {
    if (std::isnan(v))
        return "NaN";
    if (std::isinf(v))
        return v > 0 ? "Infinity" : "-Infinity";
    char buffer[32];
    auto [end, ec] = std::to_chars(buffer, buffer + sizeof buffer, v);
    return std::string(buffer, end);
}

SqlValue cell(const PGresult* result, int row, int column) {
    if (PQgetisnull(result, row, column))
        return std::monostate{};
    const char* text = PQgetvalue(result, row, column);
    const size_t size = static_cast<size_t>(PQgetlength(result, row, column));
    switch (PQftype(result, column)) {
    case kInt2Oid:
    case kInt4Oid:
    case kInt8Oid:
    case kOidOid: {
        int64_t v = 0;
        std::from_chars(text, text + size, v);
        return v;
    }
    case kFloat4Oid:
    case kFloat8Oid:
    case kNumericOid: {
        double v = 0;
        std::from_chars(text, text + size, v);
        return v;
    }
    case kBoolOid:
        return static_cast<int64_t>(size > 0 && text[0] == 't');
    default:
        return std::string(text, size);
    }
}

} // namespace

std::string numberedPlaceholders(std::string_view sql, int& count) {
    std::string out;
    out.reserve(sql.size() + 16);
    count = 0;
    for (size_t i = 0; i < sql.size(); ++i) {
        const char c = sql[i];
        if (c == '\'' || c == '"') {
            // A quoted literal or identifier; a doubled quote inside it is part of it.
            size_t end = sql.find(c, i + 1);
            while (end != std::string_view::npos && end + 1 < sql.size() && sql[end + 1] == c)
                end = sql.find(c, end + 2);
            end = end == std::string_view::npos ? sql.size() - 1 : end;
            out.append(sql.substr(i, end - i + 1));
            i = end;
        } else if (c == '-' && i + 1 < sql.size() && sql[i + 1] == '-') {
            size_t end = sql.find('\n', i);
            end = end == std::string_view::npos ? sql.size() - 1 : end;
            out.append(sql.substr(i, end - i + 1));
            i = end;
        } else if (c == '/' && i + 1 < sql.size() && sql[i + 1] == '*') {
            size_t end = sql.find("*/", i + 2);
            end = end == std::string_view::npos ? sql.size() - 1 : end + 1;
            out.append(sql.substr(i, end - i + 1));
            i = end;
        } else if (c == '?') {
            out += '$';
            out += std::to_string(++count);
        } else {
            out += c;
        }
    }
    return out;
}

PostgresConnection::PostgresConnection(const std::string& uri) {
    // Array entries before the expanded URI are defaults the URI may override.
    const char* keys[] = {"connect_timeout", "application_name", "dbname", nullptr};
    const char* values[] = {"10", "quillfern-server", uri.c_str(), nullptr};
    m_conn = PQconnectdbParams(keys, values, 1);
    if (!m_conn)
        throw StoreError("PostgreSQL: out of memory opening a connection");
    if (PQstatus(m_conn) != CONNECTION_OK) {
        std::string message = trimmed(PQerrorMessage(m_conn));
        PQfinish(m_conn);
        m_conn = nullptr;
        throw StoreError("PostgreSQL: cannot connect: " + message);
    }
    // Notices (for example "relation already exists, skipping") are not errors: keep them off
    // the server's output.
    PQsetNoticeProcessor(
        m_conn, [](void*, const char*) {}, nullptr);
}

PostgresConnection::~PostgresConnection() {
    PQfinish(m_conn);
}

void PostgresConnection::ensureConnected() {
    if (PQstatus(m_conn) == CONNECTION_OK)
        return;
    if (m_inTransaction)
        throw StoreError("PostgreSQL: the connection was lost during a transaction");
    PQreset(m_conn);
    // Prepared statements belong to the lost session.
    m_statements.clear();
    if (PQstatus(m_conn) != CONNECTION_OK)
        throw StoreError("PostgreSQL: cannot reconnect: " + trimmed(PQerrorMessage(m_conn)));
}

void PostgresConnection::execute(const std::string& sql) {
    ensureConnected();
    Result result(PQexec(m_conn, sql.c_str()));
    check(m_conn, result.get(), sql);
}

const PostgresConnection::Prepared& PostgresConnection::prepared(std::string_view sql) {
    if (auto it = m_statements.find(sql); it != m_statements.end())
        return it->second;
    Prepared p;
    std::string translated = numberedPlaceholders(sql, p.parameters);
    p.name = "qf" + std::to_string(++m_nextName);
    Result result(PQprepare(m_conn, p.name.c_str(), translated.c_str(), 0, nullptr));
    check(m_conn, result.get(), sql);
    return m_statements.emplace(std::string(sql), std::move(p)).first->second;
}

SqlResult PostgresConnection::query(std::string_view sql, std::span<const SqlValue> params) {
    ensureConnected();
    const Prepared& statement = prepared(sql);
    if (static_cast<int>(params.size()) != statement.parameters)
        throw StoreError("PostgreSQL: " + std::to_string(params.size()) + " values for " +
                         std::to_string(statement.parameters) + " placeholders (" + excerpt(sql) + ")");

    std::vector<std::string> texts(params.size());
    std::vector<const char*> values(params.size(), nullptr);
    for (size_t i = 0; i < params.size(); ++i) {
        const SqlValue& v = params[i];
        if (auto n = std::get_if<int64_t>(&v)) {
            texts[i] = std::to_string(*n);
        } else if (auto d = std::get_if<double>(&v)) {
            texts[i] = textOfReal(*d);
        } else if (auto s = std::get_if<std::string>(&v)) {
            // Text parameters end at a NUL, and PostgreSQL text cannot hold one: refuse rather
            // than store a cut value.
            if (s->find('\0') != std::string::npos)
                throw StoreError("PostgreSQL: a text value holds a NUL character (" + excerpt(sql) + ")");
            values[i] = s->c_str();
            continue;
        } else {
            continue; // NULL
        }
        values[i] = texts[i].c_str();
    }

    Result result(PQexecPrepared(m_conn, statement.name.c_str(), static_cast<int>(params.size()), values.data(),
                                 nullptr, nullptr, 0));
    check(m_conn, result.get(), sql);

    const int rows = PQntuples(result.get());
    const int columns = PQnfields(result.get());
    std::vector<SqlValue> cells;
    cells.reserve(static_cast<size_t>(rows) * static_cast<size_t>(columns));
    for (int r = 0; r < rows; ++r)
        for (int c = 0; c < columns; ++c)
            cells.push_back(cell(result.get(), r, c));
    return SqlResult(columns, std::move(cells));
}

void PostgresConnection::beginRead() {
    begin("BEGIN ISOLATION LEVEL REPEATABLE READ READ ONLY");
}

// Writers run one at a time on the whole database, across every server process: a change
// number drawn later is then always committed later, so a reader that sees number N has seen
// every number below it, and a sync cursor never steps over a change still in flight.
void PostgresConnection::beginWrite() {
    begin("BEGIN");
    try {
        execute("SELECT pg_advisory_xact_lock(" + std::to_string(kWriteLockKey) + ")");
    } catch (...) {
        rollback();
        throw;
    }
}

void PostgresConnection::begin(const std::string& sql) {
    m_inTransaction = false;
    ensureConnected();
    // A transaction some failure left open would swallow this one.
    if (PQtransactionStatus(m_conn) != PQTRANS_IDLE)
        execute("ROLLBACK");
    try {
        execute(sql);
    } catch (const StoreError&) {
        // A session that died while the connection sat in the pool (a server restart, an idle
        // timeout) shows only now. Nothing ran yet, so opening it again and retrying is safe.
        if (PQstatus(m_conn) == CONNECTION_OK)
            throw;
        ensureConnected();
        execute(sql);
    }
    m_inTransaction = true;
}

void PostgresConnection::commit() {
    m_inTransaction = false;
    execute("COMMIT");
}

void PostgresConnection::rollback() {
    m_inTransaction = false;
    // A lost connection has rolled back by itself.
    if (PQstatus(m_conn) != CONNECTION_OK)
        return;
    execute("ROLLBACK");
}

int64_t PostgresConnection::nextChangeSeq() {
    SqlResult r = query("SELECT nextval('change_seq')", {});
    return r.integer(0, 0);
}

} // namespace qf
