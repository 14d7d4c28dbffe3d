#pragma once

#include <QString>
#include <exception>

// Every failure that can reach the player carries its own text; the application state shows
// that text as it is, so the error types of each subsystem derive from this one.
class UserFacingError : public std::exception {
public:
    [[nodiscard]] virtual QString description() const = 0;

    const char* what() const noexcept override {
        m_what = description().toUtf8();
        return m_what.constData();
    }

private:
    mutable QByteArray m_what;
};
