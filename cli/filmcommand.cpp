#include "filmcommand.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <filesystem>
#include <memory>

#include "analysis/capture.h"
#include "analysis/fieldlist.h"
#include "commands.h"
#include "mapcommand.h"
#include "options.h"

#if TESSIVA_CLI_MAPS
#include "analysis/analysisfiles.h"
#include "formats/sidefiles.h"
#include "headlessanalysis.h"
#include "offscreen.h"
#include "qimagecanvas.h"
#include "state/files.h"
#include "state/index.h"
#endif

namespace tessiva::cli {

CLI::App* AddFilmCommand(CLI::App& app, FilmRequest& request) {
  CLI::App* command = app.add_subcommand("film", "writes the window's capture of each member of a sequence as PNG");
  command->footer(
      "Each member is read as the analysis window's file change reads it; its picture is the\n"
      "window's capture: the map with the axes and the texts printed on it, the colour bar's\n"
      "frame below. Member NAME.res gives DIR/NAME-FIELD.png.");
  command->add_option("SEQUENCE", request.sequence, "the sequence file (.seq), or one result")
      ->required()
      ->type_name("")
      ->check(Found());
  command->add_option("--field", request.fieldName, "the field, as map --list-fields names it, case ignored")
      ->required()
      ->type_name("NAME")
      ->check(AValue());
  command->add_option("--out", request.output, "the directory of the pictures, made when missing")
      ->required()
      ->type_name("DIR")
      ->check(AValue());
  command->add_option("--selection", request.selection, "a selection stored in the analysis window, replayed")
      ->type_name("NAME")
      ->check(AValue());
  command->callback([&request] {
    const auto index = FieldIndexOfName(request.fieldName);
    if (!index) Refuse(UnknownFieldComplaint(request.fieldName));
    request.field = *index;
  });
  return command;
}

#if !TESSIVA_CLI_MAPS

int RunFilm(const FilmRequest&, std::ostream&, std::ostream& err) {
  err << "tessiva-cli: this build of tessiva-cli has no picture output\n";
  return kFailed;
}

#else

namespace {

// The window's colour bar measures 318 x 40 pixels.
constexpr int kBarHeight = 40;

class FilmMaker {
 public:
  FilmMaker(const FilmRequest& request, std::ostream& out, std::ostream& err)
      : request_(request), out_(out), err_(err) {}

  int Run() {
    if (!OffscreenGuiReady()) return Fail("tessiva-cli: Qt's offscreen painting could not be started");
    std::error_code ignored;
    startDir_ = std::filesystem::current_path(ignored).string();
    if (!h_.Open(request_.sequence, JoinPath(startDir_, "correl.ini"), err_)) return kFailed;
    if (!MembersPresent() || !SelectionKnown() || !OutputReady()) return kFailed;
    // Painting text needs the Qt application: the surfaces come after it.
    axes_.emplace(kCaptureAxesSide, kCaptureAxesSide);
    bar_.emplace(kCaptureLegendWidth, kBarHeight);
    window_.Repere = &*axes_;
    window_.IsoPic = &*bar_;
    window_.Axes.AfficheRepere();
    if (!h_.ReadMember(1, err_) || !FitMap() || !h_.ChooseField(request_.field, err_)) return kFailed;
    if (selection_) ReplaySelection(*selection_);
    const std::string field(FieldAt(request_.field)->listText);
    for (int32_t i = 1; i <= s_.NbSeq; ++i) {
      if (i > 1 && !ReadMember(i)) return kFailed;
      const auto png = ComposedPng(window_, {});
      const std::string path =
          JoinPath(request_.output, CaptureFileName(FileNameOf(s_.DataFileName[At(i)]), field, ".png"));
      if (!png || !WriteFileAtomically(path, *png)) return Fail("The file " + path + " could not be written");
      out_ << path << " written\n";
    }
    return kDone;
  }

 private:
  int Fail(const std::string& message) {
    err_ << message << '\n';
    return kFailed;
  }

  bool MembersPresent() {
    for (int32_t i = 1; i <= s_.NbSeq; ++i)
      if (!FileExists(s_.DataFilePath[At(i)])) {
        Fail("The member " + s_.DataFilePath[At(i)] + " of " + request_.sequence + " is missing");
        return false;
      }
    return true;
  }

  // The directory is made when missing, and must take a file.
  bool OutputReady() {
    std::error_code ec;
    std::filesystem::create_directories(request_.output, ec);
    const std::string probe = JoinPath(request_.output, ".tessiva-film-probe");
    if (std::filesystem::is_directory(request_.output, ec) && WriteFileAtomically(probe, "")) {
      std::filesystem::remove(probe, ec);
      return true;
    }
    Fail("The directory " + request_.output + " can't be written");
    return false;
  }

  // The member read, its crack measured and the selection replayed, as the
  // window's file change does.
  bool ReadMember(int32_t i) {
    if (!h_.ReadMember(i, err_) || !FitMap()) return false;
    window_.AfterFileChange();
    return true;
  }

  // The map's surface takes the size the window lays the member's picture out at.
  bool FitMap() {
    if (window_.PicAnaTemp.Pixels.Empty()) {
      Fail("The picture " + s_.PicRefPath + " can't be read, so no picture of " + s_.ResFile + " is made");
      return false;
    }
    window_.View.Zoom = 1.0;
    window_.LayOutPicAna();
    const ControlState& bounds = window_.Controls().Get("PicAna");
    if (!map_ || map_->PixelWidth() != bounds.width || map_->PixelHeight() != bounds.height) {
      map_ = std::make_unique<QImageCanvas>(bounds.width, bounds.height);
      if (map_->Image().isNull()) {
        Fail("There is not enough memory to paint a map of " + std::to_string(bounds.width) + " x " +
             std::to_string(bounds.height) + " pixels");
        return false;
      }
      window_.PicAna = map_.get();
      window_.PicAnaRefresh();
    }
    return true;
  }

  // The names of the stored selections are those of correl.ini.
  bool SelectionKnown() {
    if (!request_.selection) return true;
    const std::vector<std::string>& names = window_.Controls().Get("Combo1").items;
    const auto found = std::find(names.begin(), names.end(), *request_.selection);
    if (found != names.end()) {
      selection_ = static_cast<int32_t>(found - names.begin());
      return true;
    }
    std::string known;
    for (const std::string& n : names) known += (known.empty() ? "" : ", ") + n;
    Fail("unknown selection " + *request_.selection + "; the stored selections are: " +
         (known.empty() ? "none" : known));
    return false;
  }

  // The stored selection, kept beside correl.ini, is loaded as a click on its
  // name in Combo1 loads it; its working copy stays in the scratch directory.
  void ReplaySelection(int32_t index) {
    AppState where;
    where.StartDir = startDir_;
    std::error_code ec;
    std::filesystem::copy_file(SideFilePath(where, kAosSets, *request_.selection),
                               SideFilePath(s_, kAosSets, *request_.selection),
                               std::filesystem::copy_options::overwrite_existing, ec);
    window_.PickingTools().OnCombo1Click(index);
  }

  const FilmRequest& request_;
  std::ostream& out_;
  std::ostream& err_;
  std::string startDir_;
  HeadlessAnalysis h_;
  AppState& s_ = h_.s;
  NewAnalyse& window_ = h_.window;
  std::optional<QImageCanvas> axes_, bar_;
  std::unique_ptr<QImageCanvas> map_;
  std::optional<int32_t> selection_;
};

}  // namespace

int RunFilm(const FilmRequest& request, std::ostream& out, std::ostream& err) {
  return FilmMaker(request, out, err).Run();
}

#endif

}  // namespace tessiva::cli
