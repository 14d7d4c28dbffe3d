#pragma once

#include "archive/shared_text.h"

// A player's game name with the hash of its lower case kept beside it in the row. Friends are
// found by name among every team-mate of every game, case-insensitively: with the hash in the
// row, a pass rules out nearly all names without reaching for the shared text's bytes, which lie
// elsewhere in memory.
class PlayerName : public SharedText {
public:
    PlayerName() = default;
    PlayerName(SharedText text) : SharedText(text), m_lowerCaseHash(text.lowerCaseHash()) {}
    // For a text whose hash is known already.
    PlayerName(SharedText text, quint32 lowerCaseHash) : SharedText(text), m_lowerCaseHash(lowerCaseHash) {}
    PlayerName(const QString& text) : PlayerName(SharedText(text)) {}
    PlayerName(const std::optional<QString>& text) : PlayerName(SharedText(text)) {}

    [[nodiscard]] quint32 lowerCaseHash() const { return m_lowerCaseHash; }

private:
    quint32 m_lowerCaseHash = SharedText::lowerCaseHashOf(QStringView());
};
