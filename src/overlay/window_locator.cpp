#include "overlay/window_locator.h"

#include <QGuiApplication>
#include <QScreen>
#include <cmath>

WindowLocator::WindowLocator(std::shared_ptr<WindowListSource> windows, std::function<Screens()> screens)
    : m_windows(std::move(windows)), m_screens(std::move(screens)) {}

std::optional<WindowLocator::Game> WindowLocator::locate() {
    const std::optional<QList<WindowListSource::Window>> windows = m_windows->windows();
    if (!windows)
        return std::nullopt;
    return choose(*windows, m_screens());
}

std::optional<WindowLocator::Game> WindowLocator::choose(const QList<WindowListSource::Window>& windows,
                                                         const Screens& screens) {
    const WindowListSource::Window* best = nullptr;
    double bestArea = 0;
    for (const WindowListSource::Window& window : windows) {
        if (!window.ownerName.startsWith(QLatin1String(gameOwnerName)) || window.layer != 0)
            continue;
        const QRectF bounds = window.bounds.value_or(QRectF());
        const double area = bounds.width() * bounds.height();
        if (!best || area > bestArea) {
            best = &window;
            bestArea = area;
        }
    }
    if (!best || !best->bounds)
        return std::nullopt;
    const QRectF frame = *best->bounds;
    if (frame.width() <= minimumSide || frame.height() <= minimumSide)
        return std::nullopt;

    std::optional<QRectF> screen = screens.main;
    for (const QRectF& candidate : screens.frames) {
        if (candidate.intersects(frame)) {
            screen = candidate;
            break;
        }
    }
    Game game{frame, false};
    if (screen)
        game.isFullscreen = std::abs(frame.width() - screen->width()) < fullscreenTolerance &&
                            std::abs(frame.height() - screen->height()) < fullscreenTolerance;
    return game;
}

WindowLocator::Screens WindowLocator::systemScreens() {
    Screens screens;
    for (const QScreen* screen : QGuiApplication::screens())
        screens.frames.append(QRectF(screen->geometry()));
    if (const QScreen* primary = QGuiApplication::primaryScreen())
        screens.main = QRectF(primary->geometry());
    return screens;
}
