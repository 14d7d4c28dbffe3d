#include "backend/backend_error.h"

BackendError::BackendError(Kind kind, int status, std::optional<QString> body, QString detail)
    : m_kind(kind), m_status(status), m_body(std::move(body)), m_detail(std::move(detail)) {}

BackendError BackendError::http(int status, std::optional<QString> body) {
    return BackendError(Kind::Http, status, std::move(body), {});
}

BackendError BackendError::decoding(QString detail) {
    return BackendError(Kind::Decoding, 0, std::nullopt, std::move(detail));
}

BackendError BackendError::transport(QString detail) {
    return BackendError(Kind::Transport, 0, std::nullopt, std::move(detail));
}

BackendError BackendError::unauthorized() {
    return BackendError(Kind::Unauthorized, 0, std::nullopt, {});
}

QString BackendError::description() const {
    switch (m_kind) {
    case Kind::Http:
        // A missing body still leaves the space after the full stop.
        return QStringLiteral("Server error ") + QString::number(m_status) + QStringLiteral(". ") +
               m_body.value_or(QString());
    case Kind::Decoding:
        return QStringLiteral("Couldn't read the server response. ") + m_detail;
    case Kind::Transport:
        return QStringLiteral("Network error. ") + m_detail;
    case Kind::Unauthorized:
        return QStringLiteral("Your session expired. Please sign in again.");
    }
    return {};
}
