// tessiva-cli film: the picture the analysis window's Film2 key saves, for
// every member of a sequence, written as PNG files ready for a video encoder.
#pragma once

#include <cstdint>
#include <optional>
#include <ostream>
#include <string>

namespace CLI {
class App;
}

namespace tessiva::cli {

struct FilmRequest {
  std::string sequence;
  // The field as typed, and its entry in the field list Combo2.
  std::string fieldName;
  int32_t field = 0;
  // The directory the pictures go to; made when missing.
  std::string output;
  // A selection stored from the analysis window, replayed on every member.
  std::optional<std::string> selection;
};

// Declares "film" and its options on `app`; parsing fills `request`.
CLI::App* AddFilmCommand(CLI::App& app, FilmRequest& request);

// Reads each member as the window's file change does, composes its map with
// the axes, the colour bar's frame and the texts, and writes
// OUTPUT/NAME-FIELD.png (NAME the member's result less its extension). A
// missing member, an unknown selection or a directory that can't be written
// is refused before anything is written; a picture that can't be written
// stops the film there.
int RunFilm(const FilmRequest& request, std::ostream& out, std::ostream& err);

}  // namespace tessiva::cli
