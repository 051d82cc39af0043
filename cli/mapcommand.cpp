#include "mapcommand.h"

#include <algorithm>
#include <cctype>

#include "analysis/fieldlist.h"
#include "commands.h"
#include "options.h"
#include "state/numtext.h"

#if TESSIVA_CLI_MAPS
#include <filesystem>
#include <set>

#include "analysis/analysisfiles.h"
#include "analysis/newanalyse.h"
#include "formats/seqfile.h"
#include "state/files.h"
#include "state/index.h"
#include "headlessanalysis.h"
#include "offscreen.h"
#include "setup/picture.h"
#include "qimagecanvas.h"
#endif

namespace tessiva::cli {
namespace {

std::string FieldNames() {
  std::string names;
  for (const FieldEntry& entry : FieldEntries())
    if (entry.view) names += std::string(entry.listText) + '\n';
  return names;
}

}  // namespace

CLI::App* AddMapCommand(CLI::App& app, MapRequest& request) {
  CLI::App* command = app.add_subcommand("map", "paints a field of a result as the analysis window does, into a PNG");
  command->footer(
      "The picture holds the map over the result's picture and the colour bar's frame below it (the\n"
      "title, the scale's name, the bar with the distribution of the values and five labels of the range).\n"
      "For a sequence OUT is a directory, made when missing, and member NAME.res gives OUT/NAME-FIELD.png,\n"
      "FIELD being the field's name with every run of characters other than letters, digits, '.', '-' and\n"
      "'_' made one '_'. Nothing is written unless every member is painted.");
  command->add_option("INPUT", request.input, "a result (.res) or a sequence (.seq)")->type_name("")->check(Found());
  const CLI::Option* field = AddFieldOption(*command, request.field, "the field, as --list-fields names it, case ignored");
  const CLI::Option* png = command->add_option("--png", request.output, "the picture to write; a directory for a sequence")
                               ->type_name("OUT")
                               ->check(AValue());
  command->add_option("--smooth", request.smooth,
                      "\"Interpolation\": N x N colour squares a pattern, 1 to " + std::to_string(kMaxSmooth) + " (1)")
      ->type_name("N")
      ->check(WholeIn(1, kMaxSmooth));
  command->add_flag("--on-final", request.onFinal, "the map on the deformed picture, squares where the patterns went");
  command->add_option("--magnification", request.magnification, "\"Amplification\" of the deformed mesh and the vectors")
      ->type_name("M")
      ->check(Positive());
  command->add_option("--palette", request.palette,
                      "0 blue to red, 1 grey levels, 2 blue to red then black and white (0)")
      ->type_name("N")
      ->check(WholeIn(0, 2));
  command->add_flag("--show-bad", request.showBad, "\"Show Bad Pattern\": patterns that aren't good are painted");
  const CLI::Option* list =
      command->add_flag("--list-fields", request.listFields, "prints the names of the fields, one a line");
  command->callback([command, list, field, png, &request] {
    if (list->count() > 0) {
      const auto others = command->get_options([list](const CLI::Option* o) { return o != list && o->count() > 0; });
      if (!others.empty()) Refuse("--list-fields takes no other argument");
      return;
    }
    if (request.input.empty()) Refuse("map needs a result or sequence file");
    if (field->count() == 0) Refuse("give the field to paint with --field NAME");
    if (png->count() == 0) Refuse("give the picture to write with --png OUT");
  });
  return command;
}

CLI::Option* AddFieldOption(CLI::App& command, int32_t& field, const std::string& description) {
  const auto choose = [&field](const std::string& name) {
    const auto index = FieldIndexOfName(name);
    if (!index) Refuse(UnknownFieldComplaint(name));
    field = *index;
  };
  return command.add_option_function<std::string>("--field", choose, description)->type_name("NAME")->check(AValue());
}

std::string UnknownFieldComplaint(const std::string& name) {
  std::string names = FieldNames();
  names.pop_back();
  for (size_t at = names.find('\n'); at != std::string::npos; at = names.find('\n', at + 1))
    names.replace(at, 1, "\n  ");
  return "unknown field " + name + "; the fields are:\n  " + names;
}

std::string MemberPictureName(const std::string& resultName, const std::string& fieldText) {
  const auto kept = [](unsigned char c) { return std::isalnum(c) || c == '.' || c == '-' || c == '_'; };
  std::string safe;
  for (const char c : fieldText) {
    if (kept(static_cast<unsigned char>(c)))
      safe += c;
    else if (!safe.empty() && safe.back() != '_')
      safe += '_';
  }
  while (!safe.empty() && safe.back() == '_') safe.pop_back();
  const std::string name = resultName.substr(0, resultName.find_last_of('.'));
  return name + "-" + safe + ".png";
}

#if !TESSIVA_CLI_MAPS

int RunMap(const MapRequest& request, std::ostream& out, std::ostream& err) {
  if (request.listFields) {
    out << FieldNames();
    return kDone;
  }
  err << "tessiva-cli: this build of tessiva-cli has no picture output\n";
  return kFailed;
}

#else

namespace {

// The window's colour bar measures 318 x 40 pixels.
constexpr int kBarHeight = 40;
// Maps above this many pixels (8 bytes each, map and picture) are refused.
constexpr int64_t kMaxMapPixels = int64_t{1} << 27;

// The legend grows with the map, one step per 800 pixels of its larger side,
// so that it stays readable when a large map is shown shrunk.
int LayoutScale(int mapWidth, int mapHeight) { return std::max(1, std::max(mapWidth, mapHeight) / 800); }

// The maps of a sequence are written beside their final names and renamed
// once every member is painted, so that a member that can't be read leaves
// the directory as it was.
class Output {
 public:
  Output(const MapRequest& request, bool sequence) : request_(request), sequence_(sequence) {}
  Output(const Output&) = delete;
  Output& operator=(const Output&) = delete;
  ~Output() { Discard(); }

  // Makes the directory of a sequence's maps, and its parents, when missing.
  bool Prepare(std::ostream& err) {
    if (!sequence_) return true;
    std::error_code ec;
    for (auto p = std::filesystem::absolute(request_.output, ec); !ec && !p.empty() && !std::filesystem::exists(p, ec);
         p = p.parent_path())
      made_.push_back(p);
    std::filesystem::create_directories(request_.output, ec);
    if (std::filesystem::is_directory(request_.output, ec)) return true;
    err << "The directory " << request_.output << " could not be made\n";
    return false;
  }

  std::string PathOf(const std::string& name) const {
    return sequence_ ? JoinPath(request_.output, name) : request_.output;
  }

  bool Add(const std::string& path, std::string_view png, std::ostream& err) {
    const std::string staging = sequence_ ? JoinPath(DirectoryOf(path), "." + FileNameOf(path) + ".partial") : path;
    if (!WriteFileAtomically(staging, png)) {
      err << "The file " << path << " could not be written\n";
      return false;
    }
    if (sequence_) staged_.push_back({staging, path});
    done_.push_back(path);
    return true;
  }

  bool Commit(std::ostream& out, std::ostream& err) {
    for (const auto& [staging, path] : staged_) {
      std::error_code ec;
      std::filesystem::rename(staging, path, ec);
      if (ec) {
        err << "The file " << path << " could not be written\n";
        return false;
      }
    }
    staged_.clear();
    made_.clear();
    if (sequence_)
      out << done_.size() << " maps written in " << request_.output << '\n';
    else
      out << request_.output << " written\n";
    return true;
  }

 private:
  void Discard() {
    std::error_code ec;
    for (const auto& staged : staged_) std::filesystem::remove(staged.first, ec);
    // Only directories this run made, and only while empty.
    for (const auto& made : made_) std::filesystem::remove(made, ec);
  }

  const MapRequest& request_;
  bool sequence_;
  std::vector<std::filesystem::path> made_;  // deepest first
  std::vector<std::pair<std::string, std::string>> staged_;
  std::vector<std::string> done_;
};

class MapPainter {
 public:
  MapPainter(const MapRequest& request, std::ostream& err) : request_(request), err_(err) {}

  int Run(std::ostream& out) {
    if (!OffscreenGuiReady()) return Fail("tessiva-cli: Qt's offscreen painting could not be started");
    // The palette and the window's options come from the correl.ini of the current directory.
    std::error_code ignored;
    if (!h_.Open(request_.input, JoinPath(std::filesystem::current_path(ignored).string(), "correl.ini"), err_))
      return kFailed;
    SetOptions();
    const bool sequence = IsSequenceFile(request_.input);
    std::vector<std::string> names(static_cast<size_t>(s_.NbSeq) + 1);
    const std::string fieldText(FieldAt(request_.field)->listText);
    std::set<std::string> distinct;
    for (int32_t i = 1; i <= s_.NbSeq; ++i) {
      names[At(i)] = MemberPictureName(FileNameOf(s_.DataFileName[At(i)]), fieldText);
      if (sequence && !distinct.insert(names[At(i)]).second)
        return Fail("Two members of " + request_.input + " would both be written as " + names[At(i)]);
    }
    Output output(request_, sequence);
    if (!output.Prepare(err_)) return kFailed;
    for (int32_t i = 1; i <= s_.NbSeq; ++i) {
      const auto png = Paint(i);
      if (!png) return kFailed;
      if (!output.Add(output.PathOf(names[At(i)]), *png, err_)) return kFailed;
    }
    return output.Commit(out, err_) ? kDone : kFailed;
  }

 private:
  int Fail(const std::string& message) {
    err_ << message << '\n';
    return kFailed;
  }

  // The window's controls, set as the user would set them before the first member is read.
  void SetOptions() {
    ControlRegistry& c = window_.Controls();
    c.SetChecked("Interpolation", request_.smooth > 1);
    if (request_.smooth > 1) c.SetText("SmoothCombo", std::to_string(request_.smooth));
    c.SetChecked("Option3(0)", request_.onFinal);
    c.SetChecked("Option3(1)", !request_.onFinal);
    c.SetChecked("Amplification", request_.magnification.has_value());
    if (request_.magnification) c.SetText("TextMagni", *request_.magnification);
    c.SetChecked("Bad", request_.showBad);
    window_.StyleColor(request_.palette);
  }

  // Reads member i and paints its field; the PNG's bytes, or nothing when it failed (said on err).
  std::optional<std::string> Paint(int32_t i) {
    // A member whose picture is missing must not be painted on the picture of the member before.
    window_.PicAnaTemp = {};
    window_.PicAnaTemp2 = {};
    if (!h_.ReadMember(i, err_)) return std::nullopt;
    if (!PictureRead(i)) return std::nullopt;
    window_.View.Zoom = 1.0;
    window_.LayOutPicAna();
    const ControlState& bounds = window_.Controls().Get("PicAna");
    if (int64_t{bounds.width} * bounds.height > kMaxMapPixels) {
      Fail("The map of " + std::to_string(bounds.width) + " x " + std::to_string(bounds.height) +
           " pixels is too large to paint");
      return std::nullopt;
    }
    const int k = LayoutScale(bounds.width, bounds.height);
    QImageCanvas map(bounds.width, bounds.height);
    QImageCanvas bar(kCaptureLegendWidth * k, kBarHeight * k);
    if (map.Image().isNull() || bar.Image().isNull()) {
      Fail("There is not enough memory to paint a map of " + std::to_string(bounds.width) + " x " +
           std::to_string(bounds.height) + " pixels");
      return std::nullopt;
    }
    window_.PicAna = &map;
    window_.IsoPic = &bar;
    const bool chosen = h_.ChooseField(request_.field, err_);
    std::optional<std::string> png;
    if (chosen) png = ComposedPng(window_, {.texts = false, .axes = false, .scale = k, .trimFrame = false});
    window_.PicAna = nullptr;
    window_.IsoPic = nullptr;
    if (!chosen) return std::nullopt;
    if (window_.Ranges.MaxU == NewAnalyse::kNoData || window_.Ranges.MaxV == NewAnalyse::kNoData)
      err_ << "tessiva-cli: warning: " << s_.DataFilePath[At(i)] << " holds no valid pattern; its map shows the picture alone\n";
    if (!png) Fail("The map of " + s_.DataFilePath[At(i)] + " could not be made into a PNG picture");
    return png;
  }

  // A map stands on its picture, which gives it its size and scale: without
  // the picture no map is made.
  bool PictureRead(int32_t i) {
    const AnalysisPicture& picture = request_.onFinal ? window_.PicAnaTemp2 : window_.PicAnaTemp;
    if (!picture.Pixels.Empty()) return true;
    const std::string& path = request_.onFinal ? s_.PicDefPath : s_.PicRefPath;
    const std::string problem = FileExists(path) ? PictureProblem(path) : "picture " + path + " not found";
    Fail("No map of " + s_.DataFilePath[At(i)] + " is made: " +
         (problem.empty() ? "picture " + path + " can't be read" : problem));
    return false;
  }

  const MapRequest& request_;
  std::ostream& err_;
  HeadlessAnalysis h_;
  AppState& s_ = h_.s;
  NewAnalyse& window_ = h_.window;
};

}  // namespace

int RunMap(const MapRequest& request, std::ostream& out, std::ostream& err) {
  if (request.listFields) {
    out << FieldNames();
    return kDone;
  }
  return MapPainter(request, err).Run(out);
}

#endif

}  // namespace tessiva::cli
