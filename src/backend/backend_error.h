#pragma once

#include "core/user_facing_error.h"

#include <QString>
#include <optional>

// The only error the backend client raises for network, HTTP and decoding failures.
class BackendError : public UserFacingError {
public:
    enum class Kind { Http, Decoding, Transport, Unauthorized };

    static BackendError http(int status, std::optional<QString> body);
    static BackendError decoding(QString detail);
    static BackendError transport(QString detail);
    static BackendError unauthorized();

    [[nodiscard]] Kind kind() const { return m_kind; }
    [[nodiscard]] int status() const { return m_status; }
    [[nodiscard]] const std::optional<QString>& body() const { return m_body; }
    [[nodiscard]] const QString& detail() const { return m_detail; }
    [[nodiscard]] QString description() const override;

private:
    BackendError(Kind kind, int status, std::optional<QString> body, QString detail);

    Kind m_kind;
    int m_status = 0;
    std::optional<QString> m_body;
    QString m_detail;
};
