#pragma once

#include "overlay/window_list_source.h"

#include <QList>
#include <QRectF>
#include <QString>
#include <functional>
#include <memory>
#include <optional>

// Finds the game's window among the on-screen windows. Frames stay in the window server's own
// coordinates (origin at the top left of the primary screen, y growing downward), which are also
// Qt's: the strip is placed in them directly, so nothing is flipped on the way.
class WindowLocator {
public:
    struct Game {
        QRectF frame;
        bool isFullscreen = false; // covers its whole screen, within 2 points each way

        bool operator==(const Game&) const = default;
    };

    struct Screens {
        QList<QRectF> frames;
        std::optional<QRectF> main;
    };

    static constexpr const char* gameOwnerName = "League of Legends";
    // The game's small helper windows are this wide or high at most.
    static constexpr double minimumSide = 200;
    static constexpr double fullscreenTolerance = 2;

    WindowLocator(std::shared_ptr<WindowListSource> windows, std::function<Screens()> screens);

    // One query of the window list.
    [[nodiscard]] std::optional<Game> locate();

    // The choice itself: windows owned by the game (its name, or its name followed by more) on
    // layer 0, the largest by area, the earlier on a tie; none when it is 200 points or less
    // either way.
    [[nodiscard]] static std::optional<Game> choose(const QList<WindowListSource::Window>& windows,
                                                    const Screens& screens);
    // The screens as Qt lays them out.
    [[nodiscard]] static Screens systemScreens();

private:
    std::shared_ptr<WindowListSource> m_windows;
    std::function<Screens()> m_screens;
};
