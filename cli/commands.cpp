#include "commands.h"

#include "exportcommand.h"
#include "flccommand.h"
#include "mapcommand.h"
#include "pickcommand.h"
#include "setupcommand.h"
#include "sifcommand.h"
#include "state/numtext.h"
#include "synthcommand.h"

namespace tessiva::cli {
namespace {

constexpr const char* kUsage =
    "Usage: tessiva-cli synth DIR FIELD [A [B [C]]] [--size N] [--noise SIGMA] [--seed K]\n"
    "       tessiva-cli setup DIR [--ref NAME] [--def NAME] [--data NAME.don] [--area X1 Y1 X2 Y2]\n"
    "                             [--grid N] [--pattern MIN MAX] [--bilinear] [--large-strain]\n"
    "       tessiva-cli export RESULT.res --cfr|--unv|--inp|--vtu|--csv OUT [--show-bad-pattern]\n"
    "                          [--final-to-initial]\n"
    "       tessiva-cli flc RESULT.res|SEQUENCE.seq [--band X1,Y1,X2,Y2] [--position P] [--side left|right]\n"
    "                       [--method cosine|iso12004] [--csv]\n"
    "       tessiva-cli map RESULT.res|SEQUENCE.seq --field NAME --png OUT [--smooth N] [--on-final]\n"
    "                       [--magnification M] [--palette 0|1|2] [--show-bad]\n"
    "       tessiva-cli map --list-fields\n"
    "       tessiva-cli pick RESULT.res|SEQUENCE.seq --tool TOOL --at X1,Y1[,X2,Y2] --field NAME [--csv]\n"
    "       tessiva-cli sif RESULT.res|SEQUENCE.seq --crack XTIP,YTIP,XSTART,YSTART --radius R [--klarg K]\n"
    "                       [--csv]\n"
    "       tessiva-cli --help\n"
    "\n"
    "synth   writes a synthetic speckle pair DIR/ref.bmp, DIR/def.bmp with a known displacement\n"
    "        field, and the field at every point in DIR/truth.txt. FIELD and its values:\n"
    "          translation U V, strain EXX EYY, shear GAMMA, rotation DEGREES,\n"
    "          sinusoid AMPLITUDE PERIOD, hole REMOTE_STRAIN RADIUS,\n"
    "          neck STRAIN PEAK WIDTH, crack KI/(2 mu)\n"
    "\n"
    "setup   writes the data file DIR/NAME.don (data.don) for the pictures DIR/ref.bmp and\n"
    "        DIR/def.bmp, as the setup window would: one rectangular area (the picture less a\n"
    "        tenth of its size on each side unless --area is given), the pattern grid, a start\n"
    "        point at the area's middle found by the start search. Grid step (10) and pattern\n"
    "        sizes (21 25) are kept within the limits of the parameters window; the cubic\n"
    "        spline is used unless --bilinear.\n"
    "\n"
    "export  reads a result file as the analysis window does (mesh and strains) and\n"
    "        writes its mesh and results to OUT:\n"
    "  --cfr                a clean result file\n"
    "  --unv                a Universal file\n"
    "  --inp                an Abaqus input file\n"
    "  --vtu                a VTK unstructured grid for ParaView and meshio (positions and\n"
    "                       displacements in the calibration's units, y pointing up)\n"
    "  --csv                a table of the valid nodes, a row each, units in the header\n"
    "  --show-bad-pattern   \"Show Bad Pattern\": patterns that aren't good take part\n"
    "  --final-to-initial   \"Final -> Initial\": strains on the deformed configuration\n"
    "\n"
    "flc     the forming-limit determination of the analysis window (field \"FLC Determination\")\n"
    "        on a result or on each member of a sequence. The section of 79 points is laid across\n"
    "        the neck, the points of the neck (between the inner bounds of the fit windows, where\n"
    "        the major strain bends up most) are rejected, and the limit strains are read from\n"
    "        the rest; the section and its states are kept along the sequence. Prints the\n"
    "        section of the last member (abscissa in pixels, strains in %, state 1 fitted,\n"
    "        0 no data, -1 rejected), then the limit strains, one row a member.\n"
    "  --band X1,Y1,X2,Y2   picture pixels: the section tool's line across the neck; without\n"
    "                       it the section runs between the result's two areas\n"
    "  --position P         \"Line position\", 0 to 100 across the band (50)\n"
    "  --side left|right    that half of the section only, mirrored about its middle\n"
    "  --method M           cosine: the cosine-linear fit, its extremes and quality (default);\n"
    "                       iso12004: the cross-section method of ISO 12004-2, an inverse\n"
    "                       parabola fitted on windows 10 (1 + E2/E1) mm wide either side\n"
    "  --csv                comma separated, LF line ends\n"
    "\n"
    "map     reads a result as the analysis window does and writes a field of it as a PNG\n"
    "        picture: the title, the map over the result's picture, the scale's name, the\n"
    "        colour bar with the distribution of the values and five labels of the range.\n"
    "        For a sequence OUT is a directory, made when missing, and member NAME.res gives\n"
    "        OUT/NAME-FIELD.png, FIELD being the field's name with every run of characters\n"
    "        other than letters, digits, '.', '-' and '_' made one '_'. Nothing is written\n"
    "        unless every member is painted, and a member whose picture can't be read paints\n"
    "        nothing.\n"
    "  --field NAME         the field, as --list-fields names it, case ignored\n"
    "  --smooth N           \"Interpolation\": N x N colour squares a pattern (1 to 10), not one\n"
    "  --on-final           the map on the deformed picture, squares where the patterns went\n"
    "  --magnification M    \"Amplification\" of the deformed mesh and the vectors\n"
    "  --palette N          0 blue to red, 1 grey levels, 2 blue to red then black and white\n"
    "  --show-bad           \"Show Bad Pattern\": patterns that aren't good are painted\n"
    "  --list-fields        prints the names of the fields, one a line\n"
    "\n"
    "pick    uses a picking tool of the analysis window on a result, or on each member of a\n"
    "        sequence in turn, and prints the table the data collector makes of it: tab\n"
    "        separated with CR LF line ends as the window gives it, or CSV. The selection is\n"
    "        made on the first member, then replayed on each following one: a point and a\n"
    "        gauge add one row per member, a line and a rectangle give one table per member.\n"
    "  --tool TOOL          point, line, rectangle (a table over the box), slider,\n"
    "                       gauge (a linear strain gage) or rosette\n"
    "  --at X1,Y1[,X2,Y2]   picture pixels, as the pointer gives them: the point, or where\n"
    "                       the drag starts and ends (a rosette is the square of the larger\n"
    "                       side to the lower right of the start)\n"
    "  --field NAME         the field, as map --list-fields names it, case ignored\n"
    "  --csv                comma separated, a header naming each column with its unit, LF\n"
    "                       line ends; a rectangle gives one row a cell: file, X, Y, value\n"
    "\n"
    "sif     the stress intensity factors of a crack, as the crack tool of the analysis window\n"
    "        measures them, on a result or on each member of a sequence: one row a member of\n"
    "        J, KI, KII, KIfromJ (from J), JfromKs (from KI and KII) and the direction of\n"
    "        growth in degrees on the picture (from +x towards +y, downwards). Plane stress,\n"
    "        with the result's Young modulus (MPa) and Poisson ratio: J in Pa x unit, K in\n"
    "        Pa x unit^0.5, the unit being the result's length unit.\n"
    "  --crack X1,Y1,X2,Y2  picture pixels: the crack's tip, then its start; at least three\n"
    "                       grid steps long\n"
    "  --radius R           pixels: the integrals run over the ring from 0.4 R to 0.8 R round\n"
    "                       the tip; keep 0.8 R within the crack's length\n"
    "  --klarg K            half width of the band left out along the crack, in grid steps\n"
    "                       (any positive number; 3 when not given)\n"
    "  --csv                comma separated with units in the header, LF line ends\n"
    "\n"
    "The forming-limit curve comes from correl.ini in the current directory, when there is one.\n";

}  // namespace

std::optional<int32_t> WholeNumber(const std::string& text) {
  const double value = ValNorm(text);
  if (text.empty() || value != Round(value)) return std::nullopt;
  return RoundToInt32(value);
}

int RunCli(const std::vector<std::string>& args, std::ostream& out, std::ostream& err) {
  if (args.size() == 1 && (args[0] == "--help" || args[0] == "-h")) {
    out << kUsage;
    return kDone;
  }
  std::string problem = "no command given";
  const std::vector<std::string> rest(args.begin() + (args.empty() ? 0 : 1), args.end());
  const std::string command = args.empty() ? "" : args[0];
  if (command == "export") {
    if (const auto request = ParseExport(rest, problem)) return RunExport(*request, err);
  } else if (command == "flc") {
    if (const auto request = ParseFlc(rest, problem)) return RunFlc(*request, out, err);
  } else if (command == "map") {
    if (const auto request = ParseMap(rest, problem)) return RunMap(*request, out, err);
  } else if (command == "pick") {
    if (const auto request = ParsePick(rest, problem)) return RunPick(*request, out, err);
  } else if (command == "sif") {
    if (const auto request = ParseSif(rest, problem)) return RunSif(*request, out, err);
  } else if (command == "synth") {
    if (const auto request = ParseSynth(rest, problem)) return RunSynth(*request, out, err);
  } else if (command == "setup") {
    if (const auto request = ParseSetup(rest, problem)) return RunSetup(*request, out, err);
  } else if (!command.empty()) {
    problem = "unknown command " + command;
  }
  err << "tessiva-cli: " << problem << "\n\n" << kUsage;
  return kUsageError;
}

}  // namespace tessiva::cli
