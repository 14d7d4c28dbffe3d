#pragma once

#include "core/user_facing_error.h"

#include <QString>

// What can go wrong between the app and the League client, each with the text the player sees.
class LcuError : public UserFacingError {
public:
    enum class Kind { Http, NotRunning, Decode };

    static LcuError http(int status) { return LcuError(Kind::Http, status); }
    static LcuError notRunning() { return LcuError(Kind::NotRunning, 0); }
    static LcuError decode() { return LcuError(Kind::Decode, 0); }

    [[nodiscard]] Kind kind() const { return m_kind; }
    [[nodiscard]] int status() const { return m_status; }
    [[nodiscard]] QString description() const override;

private:
    LcuError(Kind kind, int status) : m_kind(kind), m_status(status) {}

    Kind m_kind;
    int m_status;
};
