// Pictures of the analysis window made off any screen: Qt Gui started for
// painting only, and the window's map composed with its legend into PNG bytes
// by the same routine as the desktop program's captures.
#pragma once

#include <optional>
#include <string>

#include "analysis/capture.h"

namespace tessiva {
class NewAnalyse;
}

namespace tessiva::cli {

// Starts, once for the life of the process, the Qt Gui application that
// painting text needs; false when it can't be had.
bool OffscreenGuiReady();

// The composed picture of the member on show, as PNG bytes; nothing when it
// can't be made.
std::optional<std::string> ComposedPng(NewAnalyse& window, const CaptureParts& parts);

}  // namespace tessiva::cli
