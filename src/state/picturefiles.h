// The picture files Tessiva reads, by their extensions: one list for the open
// dialogs' filters and for the names made from picture names.
#pragma once

#include <array>
#include <string>
#include <string_view>

namespace tessiva {

inline constexpr std::array<std::string_view, 4> kPictureExtensions = {"bmp", "tif", "tiff", "png"};

// The open dialogs' filter of pictures: "Image|*.bmp;*.tif;*.tiff;*.png".
std::string PictureDialogFilter();

// A picture's name or path less its extension, of whichever length ("ref.tiff"
// gives "ref"); a name of another kind less its last four characters, as Stem.
std::string PictureStem(std::string_view name);

}  // namespace tessiva
