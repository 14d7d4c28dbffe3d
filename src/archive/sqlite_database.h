#pragma once

#include "archive/item_slots.h"
#include "archive/optional_int.h"
#include "archive/optional_real.h"
#include "archive/shared_text.h"

#include <QDateTime>
#include <QList>
#include <QString>
#include <QStringEncoder>
#include <optional>
#include <vector>

struct sqlite3;
struct sqlite3_stmt;

class SqliteDatabase;

// One prepared statement. Binding is positional from 1; reading is positional from 0.
class SqliteStatement {
public:
    SqliteStatement(SqliteDatabase& database, const QString& sql);
    ~SqliteStatement();
    SqliteStatement(const SqliteStatement&) = delete;
    SqliteStatement& operator=(const SqliteStatement&) = delete;

    void bind(int index, qint64 value);
    void bind(int index, bool value) { bind(index, static_cast<qint64>(value)); }
    void bind(int index, double value);
    void bind(int index, const QString& value);
    void bind(int index, const QDateTime& value);
    void bind(int index, const QList<qint64>& value);
    void bind(int index, qint32 value) { bind(index, static_cast<qint64>(value)); }
    // The shared text's own bytes, which never move: SQLite reads them without a copy.
    void bind(int index, SharedText value);
    void bind(int index, const ItemSlots& value);
    void bind(int index, qint16 value) { bind(index, static_cast<qint64>(value)); }
    template <class T> void bind(int index, OptionalInt<T> value) {
        if (value)
            bind(index, static_cast<qint64>(*value));
        else
            bindNull(index);
    }
    void bind(int index, OptionalReal value) {
        if (value)
            bind(index, *value);
        else
            bindNull(index);
    }
    template <class T> void bind(int index, const std::optional<T>& value) {
        if (value)
            bind(index, *value);
        else
            bindNull(index);
    }
    void bindNull(int index);
    // Bytes that must stay as they are until the statement is stepped.
    void bindBlob(int index, QByteArrayView bytes);

    // True while a row is available; false when done. Throws StoreError on failure.
    bool step();
    void reset();

    [[nodiscard]] bool isNull(int column) const;
    // A text column's UTF-8 bytes, valid until the next step; a null view for NULL.
    [[nodiscard]] QByteArrayView text(int column) const;
    // A blob column's bytes, valid until the next step; empty for NULL.
    [[nodiscard]] QByteArrayView blob(int column) const;
    void read(int column, qint64& out) const;
    void read(int column, bool& out) const;
    void read(int column, double& out) const;
    void read(int column, QString& out) const;
    void read(int column, QDateTime& out) const;
    void read(int column, QList<qint64>& out) const;
    void read(int column, SharedText& out) const; // absent for NULL
    template <class T> void read(int column, std::optional<T>& out) const {
        if (isNull(column)) {
            out.reset();
        } else {
            T value{};
            read(column, value);
            out = std::move(value);
        }
    }

private:
    [[nodiscard]] qint64 readInteger(int column) const;
    // Text bound to parameter index, kept until the next bind of that index so that SQLite can
    // read it without a copy of its own.
    QByteArray& textBuffer(int index);
    template <class Numbers> void bindNumberList(int index, const Numbers& value);

    SqliteDatabase& m_database;
    sqlite3_stmt* m_statement = nullptr;
    std::vector<QByteArray> m_texts;
    QStringEncoder m_utf8{QStringEncoder::Utf8};
};

// An open SQLite database file. Every failure throws StoreError with SQLite's own text.
class SqliteDatabase {
public:
    enum class Access { ReadWrite, ReadOnly };
    // ReadWrite creates the file when absent; ReadOnly needs it to exist.
    explicit SqliteDatabase(const QString& path, Access access = Access::ReadWrite);
    ~SqliteDatabase();
    SqliteDatabase(const SqliteDatabase&) = delete;
    SqliteDatabase& operator=(const SqliteDatabase&) = delete;

    void execute(const QString& sql);
    [[nodiscard]] qint64 queryInteger(const QString& sql);
    [[nodiscard]] sqlite3* handle() const { return m_db; }
    [[noreturn]] void fail(int code) const;

private:
    sqlite3* m_db = nullptr;
};
