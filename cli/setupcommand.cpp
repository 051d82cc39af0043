#include "setupcommand.h"

#include <cstdint>
#include <limits>
#include <vector>

#include "commands.h"
#include "options.h"
#include "setup/picture.h"
#include "state/files.h"
#include "state/numtext.h"

namespace tessiva::cli {
namespace {

// The parameters window's limits of the grid step and the pattern sizes.
constexpr int64_t kGridMin = 2, kGridMax = 20;
constexpr int64_t kPatternMin = 6, kPatternMax = 32;

void CheckPicture(const std::string& path) {
  if (!FileExists(path)) Refuse(path + " not found");
  if (const std::string problem = PictureProblem(path); !problem.empty()) Refuse(problem);
}

void CheckRequest(const RectangleSetup& request) {
  if (!request.dataName.ends_with(".don")) Refuse("the data file's name must end in .don");
  if (const auto& a = request.area; a && (a->x1 >= a->x2 || a->y1 >= a->y2))
    Refuse("--area " + StrTrim(a->x1) + " " + StrTrim(a->y1) + " " + StrTrim(a->x2) + " " + StrTrim(a->y2) +
           ": the corners are reversed; X1 Y1 is the upper left corner, X2 Y2 the lower right one");
  if (request.lpatMin > request.lpatMax)
    Refuse("--pattern " + StrTrim(request.lpatMin) + " " + StrTrim(request.lpatMax) +
           ": the smaller size comes first");
  CheckPicture(JoinPath(request.dir, request.ref));
  CheckPicture(JoinPath(request.dir, request.def));
}

}  // namespace

CLI::App* AddSetupCommand(CLI::App& app, RectangleSetup& request) {
  CLI::App* command = app.add_subcommand("setup", "writes the data file of a picture pair, as the setup window would");
  command->footer(
      "The data file DIR/NAME.don for the pictures DIR/ref.bmp and DIR/def.bmp: one rectangular area (the\n"
      "picture less a tenth of its size on each side unless --area is given), the pattern grid, and a start\n"
      "point at the area's middle found by the start search. The cubic spline is used unless --bilinear.");
  command->add_option("DIR", request.dir, "the directory of the pictures")->required()->type_name("")->check(Found());
  command->add_option("--ref", request.ref, "the reference picture in DIR (ref.bmp)")->type_name("NAME")->check(AValue());
  command->add_option("--def", request.def, "the deformed picture in DIR (def.bmp)")->type_name("NAME")->check(AValue());
  command->add_option("--data", request.dataName, "the data file to write in DIR (data.don)")
      ->type_name("NAME.don")
      ->check(AValue());
  const auto area = [&request](const std::vector<int32_t>& c) {
    request.area = RectangleSetup::Corners{c[0], c[1], c[2], c[3]};
  };
  command->add_option_function<std::vector<int32_t>>("--area", area, "the area's upper left and lower right corners, pixels")
      ->option_text("X1 Y1 X2 Y2")
      ->expected(4)
      ->check(WholeIn(0, std::numeric_limits<int32_t>::max()));
  command->add_option("--grid", request.lgrid, "the grid step, pixels, 2 to 20 (10)")
      ->type_name("N")
      ->check(WholeIn(kGridMin, kGridMax));
  const auto pattern = [&request](const std::vector<int32_t>& sizes) {
    request.lpatMin = sizes[0];
    request.lpatMax = sizes[1];
  };
  command->add_option_function<std::vector<int32_t>>("--pattern", pattern,
                                                      "the smallest and largest pattern, pixels, 6 to 32 (21 25)")
      ->option_text("MIN MAX")
      ->expected(2)
      ->check(WholeIn(kPatternMin, kPatternMax));
  command->add_flag_callback("--bilinear", [&request] { request.interpolation = 0; }, "bilinear interpolation");
  command->add_flag_callback("--large-strain", [&request] { request.largeStrain = 1; }, "large strains");
  command->callback([&request] { CheckRequest(request); });
  return command;
}

int RunSetup(const RectangleSetup& request, std::ostream& out, std::ostream& err) {
  const std::string problem = SetUpRectangle(request);
  if (!problem.empty()) {
    err << "No data file written: " << problem << '\n';
    return kFailed;
  }
  out << JoinPath(request.dir, request.dataName) << " written\n";
  return kDone;
}

}  // namespace tessiva::cli
