#pragma once

#include <QString>

namespace JsonKeys {

// The backend's snake_case keys matched to camelCase field names: leading and trailing
// underscores are kept, a key without an inner underscore is used as it is, otherwise the
// pieces are joined with the first lower-cased and every later one capitalised.
[[nodiscard]] QString fromSnakeCase(const QString& key);

} // namespace JsonKeys
