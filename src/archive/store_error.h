#pragma once

#include "core/user_facing_error.h"

#include <QString>

// A failure of the local archive's database (it cannot be opened, read or written).
class StoreError : public UserFacingError {
public:
    explicit StoreError(QString message, int sqliteCode = 0)
        : m_message(std::move(message)), m_sqliteCode(sqliteCode) {}
    [[nodiscard]] QString description() const override { return m_message; }
    // SQLite's (extended) result code, 0 when the failure did not come from SQLite.
    [[nodiscard]] int sqliteCode() const { return m_sqliteCode; }

private:
    QString m_message;
    int m_sqliteCode = 0;
};
