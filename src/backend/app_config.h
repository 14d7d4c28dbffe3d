#pragma once

#include <QUrl>

class QSettings;

namespace AppConfig {

// Where the backend lives when nothing else is said: the development backend on this machine.
inline constexpr const char* defaultBackendBaseUrl = "http://127.0.0.1:8000";
inline constexpr const char* backendBaseUrlKey = "backendBaseURL";

// Read on every call: the "backendBaseURL" preference when it holds a URL, else the default.
[[nodiscard]] QUrl backendBaseUrl(const QSettings& settings);

} // namespace AppConfig
