#pragma once

namespace Fonts {

// Registers the bundled text and icon fonts; call once before any QML is loaded.
void load();

} // namespace Fonts
