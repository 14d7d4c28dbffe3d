#pragma once

#include <QString>

namespace TextCase {

// Every word with its first letter in upper case and the rest in lower case, words being what
// spaces, tabs and line breaks separate: "RANKED_TFT_PAIRS" reads "Ranked_tft_pairs", "cloud
// drake" reads "Cloud Drake". The separators stay as they are.
[[nodiscard]] QString capitalised(const QString& text);

} // namespace TextCase
