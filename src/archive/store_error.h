#pragma once

#include "backend/user_facing_error.h"

#include <QString>

// A failure of the local archive's database (it cannot be opened, read or written).
class StoreError : public UserFacingError {
public:
    explicit StoreError(QString message) : m_message(std::move(message)) {}
    [[nodiscard]] QString description() const override { return m_message; }

private:
    QString m_message;
};
