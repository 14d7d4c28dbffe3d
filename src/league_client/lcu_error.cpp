#include "league_client/lcu_error.h"

QString LcuError::description() const {
    switch (m_kind) {
    case Kind::Http:
        return QStringLiteral("League client returned ") + QString::number(m_status) + QLatin1Char('.');
    case Kind::NotRunning:
        return QStringLiteral("League client isn't running. Open the client (not just a game) and try again.");
    case Kind::Decode:
        // Also used for the summoner answer: the player only needs to know the client made no sense.
        return QStringLiteral("Couldn't read the client's match history.");
    }
    return {};
}
