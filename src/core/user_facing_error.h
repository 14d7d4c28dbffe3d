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

// An error as the player reads it: a known error's own text, else what the exception says.
inline QString describeError(const std::exception_ptr& error) {
    try {
        std::rethrow_exception(error);
    } catch (const UserFacingError& known) {
        return known.description();
    } catch (const std::exception& other) {
        return QString::fromUtf8(other.what());
    } catch (...) {
        return QStringLiteral("Something went wrong.");
    }
}
