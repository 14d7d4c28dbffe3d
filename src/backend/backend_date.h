#pragma once

#include <QDateTime>
#include <QString>
#include <optional>

namespace BackendDate {

// Reads a backend timestamp: six fractional digits with an extended zone, then whole seconds
// with an extended zone, then a plain internet date-time. Anything else is no date.
[[nodiscard]] std::optional<QDateTime> fromBackend(const std::optional<QString>& text);

} // namespace BackendDate
