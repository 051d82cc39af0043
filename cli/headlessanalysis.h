// The analysis window without a screen: its controller over a scripted UI,
// with the side files it writes as it works (the working copy of a
// selection, the names list) kept in a scratch directory, so that a command
// leaves the user's directories as it found them.
#pragma once

#include <cstdint>
#include <ostream>
#include <string>

#include "analysis/newanalyse.h"
#include "scratchdir.h"
#include "setup/param.h"
#include "state/appstate.h"
#include "ui/controls.h"
#include "ui/scriptedui.h"

namespace tessiva::cli {

class HeadlessAnalysis {
 public:
  // Loads the window on a result or a sequence of results, reading the
  // configuration `iniPath` (empty: a blank one in the scratch directory).
  // False, said on err, when there is no member to read.
  bool Open(const std::string& input, const std::string& iniPath, std::ostream& err);
  // Reads member i (1-based); false, with the window's messages on err, when it can't be used.
  bool ReadMember(int32_t i, std::ostream& err);
  // Chooses entry `field` of the field list; false, with the window's refusal on err.
  bool ChooseField(int32_t field, std::ostream& err);

  AppState s;
  ControlRegistry frame;
  ScriptedUi ui{frame};
  Param param{s};
  NewAnalyse window{s, ui, param};

 private:
  // The messages the window showed since the last read, or else its status line.
  void ReportMessages(std::ostream& err) const;

  ScratchDir scratch_;
  size_t shown_ = 0;
};

}  // namespace tessiva::cli
