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
    std::string line;
    for (size_t f = 0; f < fields.size(); ++f)
      line += (f ? (request_.csv ? "," : "\t") : "") + (request_.csv ? CsvField(fields[f]) : fields[f]);
    return line + (request_.csv ? "\n" : "\r\n");
  }

  const SifRequest& request_;
  std::ostream& err_;
  HeadlessAnalysis h_;
  AppState& s_ = h_.s;
  NewAnalyse& window_ = h_.window;
};

}  // namespace

std::optional<SifRequest> ParseSif(const std::vector<std::string>& args, std::string& problem) {
  const auto refuse = [&problem](std::string complaint) -> std::optional<SifRequest> {
    problem = std::move(complaint);
    return std::nullopt;
  };
  SifRequest request;
  std::optional<std::string> crack, radius, klarg;
  for (size_t i = 0; i < args.size(); ++i) {
    const std::string& arg = args[i];
    if (arg == "--csv") {
      request.csv = true;
    } else if (arg == "--crack" || arg == "--radius" || arg == "--klarg") {
      if (i + 1 == args.size()) return refuse(arg + " needs a value");
      (arg == "--crack" ? crack : arg == "--radius" ? radius : klarg) = args[++i];
    } else if (arg.starts_with("-") || !request.input.empty()) {
      return refuse("unexpected argument " + arg);
    } else {
      request.input = arg;
    }
  }
  if (request.input.empty()) return refuse("sif needs a result or sequence file");
  if (!crack) return refuse("give the crack with --crack XTIP,YTIP,XSTART,YSTART");
  const auto ends = Coordinates(*crack);
  if (!ends || ends->size() != 4) return refuse("--crack needs four numbers XTIP,YTIP,XSTART,YSTART, not " + *crack);
  request.xTip = (*ends)[0], request.yTip = (*ends)[1], request.xStart = (*ends)[2], request.yStart = (*ends)[3];
  const auto positive = [](const std::string& text) -> std::optional<double> {
    const auto value = Coordinates(text);
    if (!value || value->size() != 1 || !((*value)[0] > 0)) return std::nullopt;
    return (*value)[0];
  };
  if (!radius) return refuse("give the ring's radius with --radius R (pixels)");
  const auto r = positive(*radius);
  if (!r) return refuse("--radius needs a positive number of pixels, not " + *radius);
  request.radius = *r;
  if (klarg) {
    request.klarg = positive(*klarg);
    if (!request.klarg) return refuse("--klarg needs a positive number of grid steps, not " + *klarg);
  }
  return request;
}

int RunSif(const SifRequest& request, std::ostream& out, std::ostream& err) { return SifRun(request, err).Run(out); }

}  // namespace tessiva::cli
