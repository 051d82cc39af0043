// Screen captures of the analysis window. Film joins the map, the axes, the
// colour bar's frame and the graph into one picture, puts it on the
// clipboard and offers to save it; Film2 does so for every member of the
// sequence into one directory. Where each part goes and which texts it
// carries is decided here; joining the surfaces' pixels and encoding picture
// files is the platform's, behind CapturePort.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "ui/capturelayout.h"

namespace tessiva {

class NewAnalyse;

// The name a capture is saved under: the result's file name less its last
// four characters, "-", the field's name and the extension (".bmp", ".png").
// Separators of directories in the field's name become '_'.
std::string CaptureFileName(const std::string& resultName, const std::string& fieldName,
                            const std::string& extension);

// The lines printed on the map before it is copied: the picture's caption,
// the extra values' names and values, the file and its reference picture,
// and the amplification when it is in force.
std::vector<std::string> CaptureTexts(NewAnalyse& window);

// What goes into a picture beside the map and the legend: the window's
// captures take the texts and the axes, a plain map of a field neither.
struct CaptureParts {
  bool texts = true;
  bool axes = true;
  // The legend's enlargement, and the map's frame band left out.
  int scale = 1;
  bool trimFrame = true;
};

// The composed picture of the member on show: the texts are printed on the
// map and the legend turned black on white for the copy, then put back.
// Nothing when there is no map or the port can't make the picture.
std::optional<RgbImage> ComposeCapture(NewAnalyse& window, CapturePort& port, const CaptureParts& parts = {});

// The Film key: one capture to the clipboard, then the offer to save it.
void Film(NewAnalyse& window, CapturePort& port);
// The Film2 key: every member loaded, drawn and saved under its default name
// in the directory chosen on the first. A picture that can't be saved is
// told and ends the sequence there. False when the sequence was cancelled or
// stopped.
bool Film2(NewAnalyse& window, CapturePort& port);

// The frame's "Output" key: patterns 100 and 110 of the result on show
// marked on the map, each with its number. False when no result is loaded
// or the window has no map.
bool MarkOutputPatterns(NewAnalyse& window);

}  // namespace tessiva
