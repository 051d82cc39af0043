#include "flccommand.h"

#include <cmath>

#include "analysis/fieldlist.h"
#include "analysis/flcfit.h"
#include "analysis/newanalyse.h"
#include "commands.h"
#include "headlessanalysis.h"
#include "options.h"
#include "pickcommand.h"
#include "state/index.h"
#include "state/numtext.h"
#include "ui/pointer.h"

namespace tessiva::cli {
namespace {

constexpr const char* kNumberForm = "0.000";

std::string Number(double value) { return Format(value, kNumberForm); }

// One row of a table, tab or comma separated.
std::string Row(const std::vector<std::string>& fields, bool csv) { return JoinedFields(fields, csv) + '\n'; }

struct MemberLimits {
  std::string member;
  FlcLimits limits;
};

class FlcRun {
 public:
  FlcRun(const FlcRequest& request, std::ostream& err) : request_(request), err_(err) {}

  int Run(std::ostream& out) {
    if (!h_.Open(request_.input, "", err_)) return kFailed;
    if (!h_.ReadMember(1, err_)) return kFailed;
    if (!LaySection()) return kFailed;
    FormingLimits& flc = window_.Flc;
    flc.OnFlcMethodClick(request_.method == FlcMethod::Iso12004 ? 1 : 0);
    if (request_.side != 0) flc.OnOption1Click(request_.side);
    if (request_.position != flc.PosScroll) flc.OnPosScrollChange(request_.position);
    RejectNeck(flc.XSection, flc.EpsiISection, flc.EpsiIISection, flc.SectionOk, flc.NbSection, LengthUnit());
    flc.AfficheCLFEpsiNEW();
    Keep(1);
    for (int32_t i = 2; i <= s_.NbSeq; ++i) {
      if (!h_.ReadMember(i, err_)) return kFailed;
      window_.AfterFileChange();
      Keep(i);
    }
    out << SectionTable() << '\n' << LimitTable();
    return kDone;
  }

 private:
  std::string Member(int32_t i) const { return s_.DataFileName[At(i)]; }
  double LengthUnit() const { return std::sqrt(std::abs(s_.UnitPX * s_.UnitPY)); }

  int Fail(const std::string& message) {
    err_ << message << '\n';
    return kFailed;
  }

  // The band with the section tool, as the pointer draws it, or field 16 on the result's areas.
  bool LaySection() {
    if (request_.band) {
      const auto& b = *request_.band;
      for (size_t i = 0; i < 4; i += 2)
        if (!OnPicture(b[i], b[i + 1])) return false;
      window_.ArmSectionTool(SectionKind::FormingLimit);
      window_.OnPicAnaMouseDown(kLeftButton, 0, b[0], b[1]);
      window_.OnPicAnaMouseMove(kLeftButton, 0, b[2], b[3]);
      window_.OnPicAnaMouseUp(kLeftButton, 0, b[2], b[3]);
    } else if (!h_.ChooseField(kFlcDeterminationEntry, err_)) {
      return false;
    }
    if (window_.Flc.NbSection > 0) return true;
    Fail(request_.band ? "The band from " + StrTrim((*request_.band)[0]) + "," + StrTrim((*request_.band)[1]) +
                             " to " + StrTrim((*request_.band)[2]) + "," + StrTrim((*request_.band)[3]) +
                             " has no length: it lays no section"
                       : "The result " + Member(1) + " holds no two areas to lay the section on; give --band");
    return false;
  }

  bool OnPicture(double x, double y) {
    const double rx = Round(x), ry = Round(y);
    if (rx >= 0 && rx <= s_.Lima && ry >= 0 && ry <= s_.Hima) return true;
    Fail("The position " + StrTrim(x) + "," + StrTrim(y) + " lies off the picture of " + Member(1) + " (0 to " +
         StrTrim(s_.Lima) + " by 0 to " + StrTrim(s_.Hima) + " pixels)");
    return false;
  }

  void Keep(int32_t i) {
    const FlcLimits& limits = window_.Flc.Limits;
    members_.push_back({Member(i), limits});
    const bool found = request_.method == FlcMethod::Iso12004 ? limits.iso.found : limits.cosineStatus == -1;
    if (found) return;
    const std::string why = request_.method == FlcMethod::Iso12004 ? limits.iso.problem
                            : limits.cosineStatus == 1      ? "Not enough points to do interpolation (>5)"
                                                            : "the fit's system is singular";
    err_ << "tessiva-cli: warning: no limit strain on " << Member(i) << ": " << why << '\n';
  }

  // The section of the last member: abscissa in pixels, the strains, and
  // whether each point was fitted (1), had no data (0) or was rejected (-1).
  std::string SectionTable() const {
    const FormingLimits& flc = window_.Flc;
    std::string table = Row({"Point", "S (px)", "E1 (%)", "E2 (%)", "State"}, request_.csv);
    for (int32_t i = 1; i <= flc.NbSection; ++i) {
      const auto k = static_cast<size_t>(i);
      table += Row({StrTrim(i), Number(flc.XSection[k]), Number(flc.EpsiISection[k]), Number(flc.EpsiIISection[k]),
                    StrTrim(flc.SectionOk[k])},
                   request_.csv);
    }
    return table;
  }

  std::string LimitTable() const {
    const bool iso = request_.method == FlcMethod::Iso12004;
    std::string table =
        Row(iso ? std::vector<std::string>{"File", "E1 limit (%)", "E2 limit (%)", "Position (px)", "Window (px)"}
                : std::vector<std::string>{"File", "E1 limit (%)", "E2 limit (%)", "Quality"},
            request_.csv);
    for (const MemberLimits& m : members_) {
      const FlcLimits& l = m.limits;
      if (iso) {
        table += l.iso.found ? Row({m.member, Number(l.iso.major), Number(l.iso.minor), Number(l.iso.position),
                                    Number(l.iso.width)},
                                   request_.csv)
                             : Row({m.member, "", "", "", ""}, request_.csv);
      } else {
        table += l.cosineStatus == -1
                     ? Row({m.member, Number(l.cosineMajor), Number(l.cosineMinor), Format(l.quality, "0.0000")},
                           request_.csv)
                     : Row({m.member, "", "", ""}, request_.csv);
      }
    }
    return table;
  }

  const FlcRequest& request_;
  std::ostream& err_;
  HeadlessAnalysis h_;
  AppState& s_ = h_.s;
  NewAnalyse& window_ = h_.window;
  std::vector<MemberLimits> members_;
};

}  // namespace

CLI::App* AddFlcCommand(CLI::App& app, FlcRequest& request) {
  CLI::App* command = app.add_subcommand("flc", "the forming-limit determination of the analysis window");
  command->footer(
      "The determination of the field \"FLC Determination\", on a result or on each member of a sequence.\n"
      "The section of 79 points is laid across the neck, the points of the neck (between the inner bounds\n"
      "of the fit windows, where the major strain bends up most) are rejected, and the limit strains are\n"
      "read from the rest; the section and its states are kept along the sequence. Prints the section of\n"
      "the last member (abscissa in pixels, strains in %, state 1 fitted, 0 no data, -1 rejected), then\n"
      "the limit strains, one row a member.\n"
      "Methods: cosine, the cosine-linear fit, its extremes and quality; iso12004, the cross-section\n"
      "method of ISO 12004-2, an inverse parabola fitted on windows 10 (1 + E2/E1) mm wide either side.\n"
      "The forming-limit curve comes from correl.ini in the current directory, when there is one.");
  command->add_option("INPUT", request.input, "a result (.res) or a sequence (.seq)")
      ->required()
      ->type_name("")
      ->check(Found());
  AddPositions(*command, "--band", "X1,Y1,X2,Y2", 4,
               "picture pixels: the section tool's line across the neck; without it the section runs between the "
               "result's two areas",
               [&request](const std::vector<double>& b) { request.band = std::array<double, 4>{b[0], b[1], b[2], b[3]}; });
  command->add_option("--position", request.position, "\"Line position\", 0 to 100 across the band (50)")
      ->type_name("P")
      ->check(WholeIn(0, 100));
  command->add_option_function<std::string>(
             "--side", [&request](const std::string& side) { request.side = side == "left" ? 1 : 2; },
             "that half of the section only, mirrored about its middle")
      ->type_name("left|right")
      ->check(OneOf({"left", "right"}));
  const auto method = [&request](const std::string& name) {
    request.method = name == "iso12004" ? FlcMethod::Iso12004 : FlcMethod::CosineLinear;
  };
  command->add_option_function<std::string>("--method", method, "how the limit strains are read (cosine)")
      ->type_name("cosine|iso12004")
      ->check(OneOf({"cosine", "iso12004"}));
  command->add_flag("--csv", request.csv, "comma separated, LF line ends");
  return command;
}

int RunFlc(const FlcRequest& request, std::ostream& out, std::ostream& err) { return FlcRun(request, err).Run(out); }

}  // namespace tessiva::cli
