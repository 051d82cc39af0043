#include "sifcommand.h"

#include <cmath>
#include <numbers>

#include "analysis/crackintegral.h"
#include "analysis/newanalyse.h"
#include "commands.h"
#include "headlessanalysis.h"
#include "options.h"
#include "pickcommand.h"
#include "state/index.h"
#include "state/numtext.h"

namespace tessiva::cli {
namespace {

// The direction on the picture in degrees, x to the right and y down, in (-180, 180].
double DirectionDegrees(double radians) {
  double degrees = std::remainder(radians * 180.0 / std::numbers::pi, 360.0);
  if (degrees == -180.0) degrees = 180.0;
  return degrees;
}

class SifRun {
 public:
  SifRun(const SifRequest& request, std::ostream& err) : request_(request), err_(err) {}

  int Run(std::ostream& out) {
    if (!h_.Open(request_.input, "", err_)) return kFailed;
    if (request_.klarg) s_.Klarg = *request_.klarg;
    std::string table;
    for (int32_t i = 1; i <= s_.NbSeq; ++i) {
      if (!h_.ReadMember(i, err_)) return kFailed;
      if (i == 1) {
        if (!CrackFits()) return kFailed;
        // The units are those of the first member.
        table = Head();
      }
      const CrackFactors& k = Measure();
      if (!k.Usable()) {
        if (i == 1) return Fail(NoPatternInRing(i));
        err_ << "tessiva-cli: warning: " << NoPatternInRing(i) << "; it gives no row\n";
        continue;
      }
      table += Row(i, k);
    }
    out << table;
    return kDone;
  }

 private:
  int Fail(const std::string& message) {
    err_ << message << '\n';
    return kFailed;
  }

  std::string Member(int32_t i) const { return s_.DataFileName[At(i)]; }

  std::string Where() const {
    return StrTrim(request_.xTip) + "," + StrTrim(request_.yTip) + " to " + StrTrim(request_.xStart) + "," +
           StrTrim(request_.yStart);
  }

  std::string NoPatternInRing(int32_t i) const {
    return "no usable pattern of " + Member(i) + " lies in the ring from " + StrTrim(0.4 * request_.radius) + " to " +
           StrTrim(0.8 * request_.radius) + " pixels round the crack tip " + StrTrim(request_.xTip) + "," +
           StrTrim(request_.yTip);
  }

  // Both ends on the picture, and the crack long enough for the window's tool.
  bool CrackFits() {
    for (const auto& [x, y] : {std::pair{request_.xTip, request_.yTip}, {request_.xStart, request_.yStart}}) {
      if (x >= 0 && x <= s_.Lima && y >= 0 && y <= s_.Hima) continue;
      Fail("The crack from " + Where() + " leaves the picture of " + Member(1) + " (0 to " + StrTrim(s_.Lima) +
           " by 0 to " + StrTrim(s_.Hima) + " pixels)");
      return false;
    }
    const double length = std::hypot(request_.xStart - request_.xTip, request_.yStart - request_.yTip);
    if (length >= kShortestCrack * s_.Lpas) return true;
    Fail("The crack from " + Where() + " is shorter than three grid steps (" + StrTrim(kShortestCrack * s_.Lpas) +
         " pixels): it gives no stress intensity factor");
    return false;
  }

  // Each member's own crack keys give way to the one asked for.
  const CrackFactors& Measure() {
    s_.FissureOn = true;
    s_.XFissureArr = request_.xTip, s_.YFissureArr = request_.yTip;
    s_.XFissureDep = request_.xStart, s_.YFissureDep = request_.yStart;
    s_.RayonFissure = request_.radius;
    window_.CalculKI();
    return window_.Crack.KiResult;
  }

  std::string Units(const std::string& lengthPower) const {
    return request_.csv ? " (Pa." + s_.UnitNameX + lengthPower + ")" : "";
  }

  std::string Head() const {
    const std::string j = Units(""), k = Units("^0.5");
    const std::vector<std::string> columns{"File",    "J" + j,       "KI" + k,
                                           "KII" + k, "KIfromJ" + k, "JfromKs" + j,
                                           request_.csv ? "Direction (deg)" : "Direction"};
    return Joined(columns);
  }

  std::string Row(int32_t i, const CrackFactors& k) const {
    std::vector<std::string> fields{Member(i)};
    for (const double value : {k.J, k.KI, k.KII, k.KIfromJ, k.JfromKs})
      fields.push_back(request_.csv ? GeneralNumber(value) : Format(value, s_.FormatLong));
    fields.push_back(Format(DirectionDegrees(k.direction), "0.00"));
    return Joined(fields);
  }

  std::string Joined(const std::vector<std::string>& fields) const {
    return JoinedFields(fields, request_.csv) + (request_.csv ? "\n" : "\r\n");
  }

  const SifRequest& request_;
  std::ostream& err_;
  HeadlessAnalysis h_;
  AppState& s_ = h_.s;
  NewAnalyse& window_ = h_.window;
};

}  // namespace

CLI::App* AddSifCommand(CLI::App& app, SifRequest& request) {
  CLI::App* command = app.add_subcommand("sif", "the stress intensity factors of a crack, as the crack tool measures them");
  command->footer(
      "On a result or on each member of a sequence: one row a member of J, KI, KII, KIfromJ (from J),\n"
      "JfromKs (from KI and KII) and the direction of growth in degrees on the picture (from +x towards +y,\n"
      "downwards). Plane stress, with the result's Young modulus (MPa) and Poisson ratio: J in Pa x unit,\n"
      "K in Pa x unit^0.5, the unit being the result's length unit.");
  command->add_option("INPUT", request.input, "a result (.res) or a sequence (.seq)")
      ->required()
      ->type_name("")
      ->check(Found());
  const auto crack = [&request](const std::vector<double>& c) {
    request.xTip = c[0], request.yTip = c[1], request.xStart = c[2], request.yStart = c[3];
  };
  AddPositions(*command, "--crack", "XTIP,YTIP,XSTART,YSTART", 4,
               "picture pixels: the crack's tip, then its start; at least three grid steps long", crack)
      ->required();
  command->add_option("--radius", request.radius,
                      "pixels: the integrals run over the ring from 0.4 R to 0.8 R round the tip; keep 0.8 R within "
                      "the crack's length")
      ->type_name("R")
      ->required()
      ->check(Positive());
  command->add_option_function<double>(
             "--klarg", [&request](double k) { request.klarg = k; },
             "half width of the band left out along the crack, in grid steps (above 0; 3 when not given)")
      ->type_name("K")
      ->check(Positive());
  command->add_flag("--csv", request.csv, "comma separated with units in the header, LF line ends");
  return command;
}

int RunSif(const SifRequest& request, std::ostream& out, std::ostream& err) { return SifRun(request, err).Run(out); }

}  // namespace tessiva::cli
