#include "state/picturefiles.h"

#include <algorithm>
#include <cctype>

#include "state/files.h"

namespace tessiva {

std::string PictureDialogFilter() {
  std::string filter = "Image|";
  for (std::string_view extension : kPictureExtensions) {
    if (extension != kPictureExtensions.front()) filter += ';';
    filter += "*.";
    filter += extension;
  }
  return filter;
}

std::string PictureStem(std::string_view name) {
  const auto lower = [](unsigned char c) { return static_cast<char>(std::tolower(c)); };
  for (std::string_view extension : kPictureExtensions) {
    if (name.size() <= extension.size() + 1) continue;
    const std::string_view tail = name.substr(name.size() - extension.size());
    if (name[name.size() - extension.size() - 1] == '.' &&
        std::equal(tail.begin(), tail.end(), extension.begin(), [&](char a, char b) { return lower(a) == b; }))
      return std::string(name.substr(0, name.size() - extension.size() - 1));
  }
  return Stem(name);
}

}  // namespace tessiva
