#pragma once

#include "backend/user_facing_error.h"

#include <QString>

// What can go wrong between the app and the League client, each with the text the player sees.
class LCUError : public UserFacingError {
public:
    enum class Kind { Http, NotRunning, Decode };

    static LCUError http(int status) { return LCUError(Kind::Http, status); }
    static LCUError notRunning() { return LCUError(Kind::NotRunning, 0); }
    static LCUError decode() { return LCUError(Kind::Decode, 0); }

    [[nodiscard]] Kind kind() const { return m_kind; }
    [[nodiscard]] int status() const { return m_status; }
    [[nodiscard]] QString description() const override;

private:
    LCUError(Kind kind, int status) : m_kind(kind), m_status(status) {}

    Kind m_kind;
    int m_status;
};
