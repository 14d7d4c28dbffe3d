#pragma once

#include <QList>
#include <QRectF>
#include <QString>
#include <optional>

// The system's list of on-screen windows, front to back, without desktop elements. The game
// window is looked for in it; tests hand in a list of their own.
class WindowListSource {
public:
    struct Window {
        QString ownerName;            // name of the owning process; empty when unknown
        std::optional<qint64> layer;  // 0 for ordinary application windows
        std::optional<QRectF> bounds; // screen coordinates, origin at the top left, y down
    };

    virtual ~WindowListSource() = default;
    // Absent when the window server cannot be asked.
    virtual std::optional<QList<Window>> windows() = 0;
};
