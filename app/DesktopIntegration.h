#pragma once

#include <QPalette>
#include <QString>

// The application id shared by the desktop entry, the metainfo and the icons.
[[nodiscard]] QString DesktopApplicationId();

// Names the application to the desktop (so Wayland finds its entry and icon) and applies the
// palette asked for in ZAMSHADEREDITOR_PALETTE: "dark" or "light" switch to the Fusion style
// with a palette of that kind, for desktops whose theme gives Qt programs none; anything else
// leaves the desktop's palette alone. Call once the application object exists.
void SetUpDesktopIntegration();

// A neutral dark palette for the Fusion style.
[[nodiscard]] QPalette DarkFusionPalette();
