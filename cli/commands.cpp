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
#include "synthcommand.h"

namespace tessiva::cli {
namespace {

constexpr const char* kAbout =
    "tessiva-cli: Tessiva without a window, for batch use: synthetic pictures, data files, result exports, maps\n"
    "and the measuring tools of the analysis window.";

constexpr const char* kFooter =
    "Run tessiva-cli COMMAND --help for a command's options.\n"
    "The forming-limit curve comes from correl.ini in the current directory, when there is one.";

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
      Declare(app, AddSifCommand, RunSif),       Declare(app, AddSynthCommand, RunSynth)};
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
  for (const Command& command : commands) {
    if (!command.app->parsed()) continue;
    return rest.empty() ? command.run(out, err) : Refused(Unexpected(rest.front()), command.app, err);
  }
  return Refused(rest.empty() ? "no command given" : "unknown command " + rest[0], nullptr, err);
}

}  // namespace tessiva::cli
