#include "archive/sqlite_database.h"

#include "archive/store_error.h"

#include <QStringList>
#include <QTimeZone>
#include <algorithm>
#include <charconv>
#include <sqlite3.h>

SqliteDatabase::SqliteDatabase(const QString& path, Access access) {
    const int mode = access == Access::ReadOnly ? SQLITE_OPEN_READONLY : SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE;
    const int code = sqlite3_open_v2(path.toUtf8().constData(), &m_db, mode | SQLITE_OPEN_NOMUTEX, nullptr);
    if (code != SQLITE_OK) {
        const QString message =
            m_db ? QString::fromUtf8(sqlite3_errmsg(m_db)) : QString::fromUtf8(sqlite3_errstr(code));
        sqlite3_close(m_db);
        m_db = nullptr;
        throw StoreError(message, code);
    }
    sqlite3_extended_result_codes(m_db, 1);
}

SqliteDatabase::~SqliteDatabase() {
    sqlite3_close_v2(m_db);
}

void SqliteDatabase::fail(int code) const {
    const char* message = m_db ? sqlite3_errmsg(m_db) : sqlite3_errstr(code);
    throw StoreError(QString::fromUtf8(message), code);
}

void SqliteDatabase::execute(const QString& sql) {
    const int code = sqlite3_exec(m_db, sql.toUtf8().constData(), nullptr, nullptr, nullptr);
    if (code != SQLITE_OK)
        fail(code);
}

qint64 SqliteDatabase::queryInteger(const QString& sql) {
    SqliteStatement statement(*this, sql);
    if (!statement.step())
        return 0;
    qint64 value = 0;
    statement.read(0, value);
    return value;
}

SqliteStatement::SqliteStatement(SqliteDatabase& database, const QString& sql) : m_database(database) {
    const QByteArray text = sql.toUtf8();
    const int code =
        sqlite3_prepare_v2(database.handle(), text.constData(), static_cast<int>(text.size()), &m_statement, nullptr);
    if (code != SQLITE_OK)
        database.fail(code);
    m_texts.resize(static_cast<std::size_t>(sqlite3_bind_parameter_count(m_statement)) + 1);
}

SqliteStatement::~SqliteStatement() {
    sqlite3_finalize(m_statement);
}

void SqliteStatement::bind(int index, qint64 value) {
    sqlite3_bind_int64(m_statement, index, value);
}

void SqliteStatement::bind(int index, double value) {
    sqlite3_bind_double(m_statement, index, value);
}

QByteArray& SqliteStatement::textBuffer(int index) {
    if (index < 0 || static_cast<std::size_t>(index) >= m_texts.size())
        m_texts.resize(static_cast<std::size_t>(std::max(index, 0)) + 1);
    return m_texts[static_cast<std::size_t>(index)];
}

void SqliteStatement::bind(int index, const QString& value) {
    if (value.isEmpty()) {
        sqlite3_bind_text(m_statement, index, "", 0, SQLITE_STATIC);
        return;
    }
    // A sync writes hundreds of thousands of texts: encode into a reused buffer, not a new one.
    QByteArray& buffer = textBuffer(index);
    buffer.resize(m_utf8.requiredSpace(value.size()));
    const char* end = m_utf8.appendToBuffer(buffer.data(), value);
    buffer.truncate(end - buffer.constData());
    sqlite3_bind_text(m_statement, index, buffer.constData(), static_cast<int>(buffer.size()), SQLITE_STATIC);
}

void SqliteStatement::bind(int index, const QDateTime& value) {
    bind(index, value.toMSecsSinceEpoch());
}

// Numbers as SQLite keeps item lists: in decimal, separated by commas, "" for none.
template <class Numbers> void SqliteStatement::bindNumberList(int index, const Numbers& value) {
    if (value.isEmpty()) {
        sqlite3_bind_text(m_statement, index, "", 0, SQLITE_STATIC);
        return;
    }
    QByteArray& buffer = textBuffer(index);
    buffer.resize(value.size() * 21); // a comma and at most 20 characters per number
    char* out = buffer.data();
    char* const end = out + buffer.size();
    for (qsizetype i = 0; i < value.size(); ++i) {
        if (i)
            *out++ = ',';
        out = std::to_chars(out, end, value[i]).ptr;
    }
    buffer.truncate(out - buffer.constData());
    sqlite3_bind_text(m_statement, index, buffer.constData(), static_cast<int>(buffer.size()), SQLITE_STATIC);
}

void SqliteStatement::bind(int index, const QList<qint64>& value) {
    bindNumberList(index, value);
}

void SqliteStatement::bind(int index, SharedText value) {
    if (value.isNull()) {
        bindNull(index);
        return;
    }
    const QByteArrayView bytes = value.utf8();
    sqlite3_bind_text(m_statement, index, bytes.isEmpty() ? "" : bytes.data(), static_cast<int>(bytes.size()),
                      SQLITE_STATIC);
}

void SqliteStatement::bind(int index, const ItemSlots& value) {
    bindNumberList(index, value);
}

void SqliteStatement::bindNull(int index) {
    sqlite3_bind_null(m_statement, index);
}

void SqliteStatement::bindBlob(int index, QByteArrayView bytes) {
    // A zero-length blob, not NULL, for no bytes.
    sqlite3_bind_blob(m_statement, index, bytes.isEmpty() ? "" : bytes.data(), static_cast<int>(bytes.size()),
                      SQLITE_STATIC);
}

bool SqliteStatement::step() {
    const int code = sqlite3_step(m_statement);
    if (code == SQLITE_ROW)
        return true;
    if (code == SQLITE_DONE)
        return false;
    sqlite3_reset(m_statement);
    m_database.fail(code);
}

void SqliteStatement::reset() {
    sqlite3_reset(m_statement);
    sqlite3_clear_bindings(m_statement);
}

bool SqliteStatement::isNull(int column) const {
    return sqlite3_column_type(m_statement, column) == SQLITE_NULL;
}

void SqliteStatement::read(int column, qint64& out) const {
    out = sqlite3_column_int64(m_statement, column);
}

void SqliteStatement::read(int column, bool& out) const {
    out = sqlite3_column_int64(m_statement, column) != 0;
}

void SqliteStatement::read(int column, double& out) const {
    out = sqlite3_column_double(m_statement, column);
}

void SqliteStatement::read(int column, QString& out) const {
    const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(m_statement, column));
    out = text ? QString::fromUtf8(text, sqlite3_column_bytes(m_statement, column)) : QString();
}

void SqliteStatement::read(int column, QDateTime& out) const {
    // A date made with Qt::UTC is held inside the QDateTime; one made with a QTimeZone (Qt 6.4) is a
    // separate allocation that every sort by date then has to fetch.
    out = QDateTime::fromMSecsSinceEpoch(sqlite3_column_int64(m_statement, column), Qt::UTC);
}

qint64 SqliteStatement::readInteger(int column) const {
    return sqlite3_column_int64(m_statement, column);
}

QByteArrayView SqliteStatement::text(int column) const {
    const auto* bytes = reinterpret_cast<const char*>(sqlite3_column_text(m_statement, column));
    return bytes ? QByteArrayView(bytes, sqlite3_column_bytes(m_statement, column)) : QByteArrayView();
}

QByteArrayView SqliteStatement::blob(int column) const {
    const void* bytes = sqlite3_column_blob(m_statement, column);
    return bytes ? QByteArrayView(static_cast<const char*>(bytes), sqlite3_column_bytes(m_statement, column))
                 : QByteArrayView();
}

void SqliteStatement::read(int column, SharedText& out) const {
    const QByteArrayView bytes = text(column);
    out = bytes.data() ? SharedText::fromUtf8(bytes) : SharedText();
}

void SqliteStatement::read(int column, QList<qint64>& out) const {
    QString text;
    read(column, text);
    out.clear();
    for (QStringView part : QStringView(text).split(QLatin1Char(','), Qt::SkipEmptyParts))
        out.append(part.toLongLong());
}
