#include "setupcommand.h"

#include <map>

#include "commands.h"
#include "state/files.h"

namespace tessiva::cli {
namespace {

// The whole numbers that follow option `at`, or nothing when they aren't there.
std::optional<std::vector<int32_t>> Numbers(const std::vector<std::string>& args, size_t at, size_t count) {
  if (at + count >= args.size()) return std::nullopt;
  std::vector<int32_t> numbers;
  for (size_t i = at + 1; i <= at + count; ++i) {
    const std::optional<int32_t> n = WholeNumber(args[i]);
    if (!n || *n < 0) return std::nullopt;
    numbers.push_back(*n);
  }
  return numbers;
}

}  // namespace

std::optional<RectangleSetup> ParseSetup(const std::vector<std::string>& args, std::string& problem) {
  const auto refuse = [&problem](std::string complaint) -> std::optional<RectangleSetup> {
    problem = std::move(complaint);
    return std::nullopt;
  };
  if (args.empty() || args[0].starts_with("-")) return refuse("setup needs the directory of the pictures");
  RectangleSetup job;
  job.dir = args[0];
  const std::map<std::string, std::string*> names{{"--ref", &job.ref}, {"--def", &job.def}, {"--data", &job.dataName}};
  for (size_t i = 1; i < args.size(); ++i) {
    const std::string& option = args[i];
    if (const auto name = names.find(option); name != names.end()) {
      if (i + 1 == args.size()) return refuse(option + " needs a file name");
      *name->second = args[++i];
    } else if (option == "--area") {
      const auto n = Numbers(args, i, 4);
      if (!n) return refuse("--area needs four whole numbers X1 Y1 X2 Y2");
      job.area = RectangleSetup::Corners{(*n)[0], (*n)[1], (*n)[2], (*n)[3]};
      i += 4;
    } else if (option == "--grid") {
      const auto n = Numbers(args, i, 1);
      if (!n) return refuse("--grid needs a whole number");
      job.lgrid = (*n)[0];
      i += 1;
    } else if (option == "--pattern") {
      const auto n = Numbers(args, i, 2);
      if (!n) return refuse("--pattern needs two whole numbers MIN MAX");
      job.lpatMin = (*n)[0];
      job.lpatMax = (*n)[1];
      i += 2;
    } else if (option == "--bilinear") {
      job.interpolation = 0;
    } else if (option == "--large-strain") {
      job.largeStrain = 1;
    } else {
      return refuse("unexpected argument " + option);
    }
  }
  if (!job.dataName.ends_with(".don")) return refuse("the data file's name must end in .don");
  return job;
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
