#include "commands.h"

#include <functional>
#include <memory>

#include "exportcommand.h"
#include "filmcommand.h"
#include "flccommand.h"
#include "mapcommand.h"
#include "options.h"
#include "pickcommand.h"
#include "setupcommand.h"
#include "sifcommand.h"
#include "state/numtext.h"
#include "synthcommand.h"

namespace tessiva::cli {
namespace {

constexpr const char* kAbout =
    "tessiva-cli: Tessiva without a window, for batch use: synthetic pictures, data files, result exports, maps\n"
    "and the measuring tools of the analysis window.";

constexpr const char* kFooter =
    "Run tessiva-cli COMMAND --help for a command's options.\n"
    "The forming-limit curve comes from correl.ini in the current directory, when there is one.";

constexpr const char* kUsage =
    "Usage: tessiva-cli synth DIR FIELD [A [B [C]]] [--size N] [--noise SIGMA] [--seed K]\n"
    "                         [--format bmp|png16|tiff16]\n"
    "       tessiva-cli --help\n"
    "\n"
    "synth   writes a synthetic speckle pair DIR/ref.bmp, DIR/def.bmp (.png or .tif with --format\n"
    "        png16 or tiff16, at 16 bits) with a known displacement\n"
    "        field, and the field at every point in DIR/truth.txt. FIELD and its values:\n"
    "          translation U V, strain EXX EYY, shear GAMMA, rotation DEGREES,\n"
    "          sinusoid AMPLITUDE PERIOD, hole REMOTE_STRAIN RADIUS,\n"
    "          neck STRAIN PEAK WIDTH, crack KI/(2 mu)\n"
    "\n"
    "The forming-limit curve comes from correl.ini in the current directory, when there is one.\n";

}  // namespace

std::optional<int32_t> WholeNumber(const std::string& text) {
  const double value = ValNorm(text);
  if (text.empty() || value != Round(value)) return std::nullopt;
  return RoundToInt32(value);
}

namespace {

// A command as the dispatch sees it: its part of the command line, and its
// work over the request that part's options filled.
struct Command {
  CLI::App* app;
  std::function<int(std::ostream&, std::ostream&)> run;
};

template <typename Request>
Command Declare(CLI::App& app, CLI::App* (*add)(CLI::App&, Request&),
                int (*run)(const Request&, std::ostream&, std::ostream&)) {
  auto request = std::make_shared<Request>();
  CLI::App* command = add(app, *request);
  command->group("Commands");
  return {command, [request, run](std::ostream& out, std::ostream& err) { return run(*request, out, err); }};
}

// The commands still read by their own parsers: the words after the command's name.
using OldParser = std::function<int(const std::vector<std::string>&, std::string&, std::ostream&, std::ostream&)>;

template <typename Request>
OldParser Old(std::optional<Request> (*parse)(const std::vector<std::string>&, std::string&),
              int (*run)(const Request&, std::ostream&, std::ostream&)) {
  return [parse, run](const std::vector<std::string>& args, std::string& problem, std::ostream& out, std::ostream& err) {
    if (const auto request = parse(args, problem)) return run(*request, out, err);
    return -1;
  };
}

// The first word of a command line that nothing took, named as what it looks like.
std::string Unexpected(const std::string& word) {
  const bool option = word.size() > 1 && word[0] == '-' && !Coordinates(word);
  return (option ? "unknown option " : "unexpected argument ") + word;
}

// The command the line names, if any.
CLI::App* Chosen(CLI::App& app) {
  const std::vector<CLI::App*> chosen = app.get_subcommands();
  return chosen.empty() ? nullptr : chosen.front();
}

int Refused(const std::string& problem, const CLI::App* command, std::ostream& err) {
  err << "tessiva-cli: " << problem << '\n';
  if (command)
    err << "Run tessiva-cli " << command->get_name() << " --help for its options.\n";
  else
    err << "Run tessiva-cli --help for the commands.\n";
  return kUsageError;
}

}  // namespace

int RunCli(const std::vector<std::string>& args, std::ostream& out, std::ostream& err) {
  CLI::App app(kAbout, "tessiva-cli");
  app.require_subcommand(0, 1);
  app.get_formatter()->label("SUBCOMMAND", "COMMAND");
  const std::vector<Command> commands{
      Declare(app, AddExportCommand, RunExport), Declare(app, AddFilmCommand, RunFilm),
      Declare(app, AddFlcCommand, RunFlc),       Declare(app, AddMapCommand, RunMap),
      Declare(app, AddPickCommand, RunPick),     Declare(app, AddSetupCommand, RunSetup),
      Declare(app, AddSifCommand, RunSif)};
  const std::vector<std::pair<CLI::App*, OldParser>> old{
      {app.add_subcommand("synth")->prefix_command(), Old(ParseSynth, RunSynth)}};
  // An unknown command is kept among the words left over, to be named; the
  // commands, made before, don't inherit this and refuse their own leftovers,
  // nor do they show the program's footer.
  app.allow_extras();
  app.footer(kFooter);
  try {
    app.parse(std::vector<std::string>(args.rbegin(), args.rend()));
  } catch (const CLI::Success& help) {
    app.exit(help, out, err);
    return kDone;
  } catch (const CLI::ExtrasError&) {
    // A command keeps the words it couldn't place; CLI11 names them without saying what they are.
    CLI::App* const command = Chosen(app);
    const std::vector<std::string> rest = command ? command->remaining() : app.remaining();
    return Refused(rest.empty() ? "unexpected arguments" : Unexpected(rest.front()), command, err);
  } catch (const CLI::ParseError& refusal) {
    return Refused(refusal.what(), Chosen(app), err);
  }
  const std::vector<std::string> rest = app.remaining();
  for (const Command& command : commands)
    if (command.app->parsed()) return rest.empty() ? command.run(out, err) : Refused(Unexpected(rest.front()), command.app, err);
  for (const auto& [command, parse] : old) {
    if (!command->parsed()) continue;
    std::string problem;
    const int status = parse(command->remaining(), problem, out, err);
    if (status >= 0) return status;
    err << "tessiva-cli: " << problem << "\n\n" << kUsage;
    return kUsageError;
  }
  return Refused(rest.empty() ? "no command given" : "unknown command " + rest[0], nullptr, err);
}

}  // namespace tessiva::cli
