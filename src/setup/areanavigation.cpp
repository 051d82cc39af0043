// The setup window's life: its load and the first reading of a data file on
// Timer3, the blinking hands, the walk from one data file of the sequence to
// the next (the start points travel through the area set "Temp"), and close.
#include <algorithm>

#include "setup/areafiles.h"
#include "setup/areaform.h"
#include "setup/areatoolbar.h"
#include "state/index.h"

namespace tessiva {
namespace {

// The area set the start points travel through from one data file to the next.
constexpr const char* kTravelSet = "Temp";

void ToggleVisible(ControlRegistry& controls, const std::string& name) {
  controls.SetVisible(name, !controls.Visible(name));
}

}  // namespace

void AreaForm::Load() {
  ControlRegistry& frame = ui_.Frame();
  for (const char* other : {"Pub", "MiseEnDonne", "ManageJobs", "NewAnalyse"}) frame.SetVisible(other, false);
  s_.AreaOpen = true;
  s_.PicRefPath.clear();
  s_.PicDefPath.clear();
  engine_.silent = false;
  engine_.search.DuCentre = engine_.search.DvCentre = 0;
  CurFile = 1;
  InitToolbar();
  InitAOI(*this, AoiNames);
  // The heavy reading waits for Timer3, so the window is on screen first.
  if (LecSeq(*this)) controls_.SetChecked("Timer3", true);
}

void AreaForm::OnTimer3() {
  controls_.SetChecked("Timer3", false);
  ReadMember(CurFile);
}

void AreaForm::OnTimer1() { ToggleVisible(controls_, "FlashInfo"); }
void AreaForm::OnTimer2() { ToggleVisible(controls_, "FlashInfo2"); }

void AreaForm::ReadMember(int32_t index) { LecDonArea(*this, index, false); }

bool AreaForm::NextData() {
  engine_.silent = true;
  if (!SaveAndMoveOn()) return false;
  if (CurFile > s_.NbSeq) {
    Unload();
    return true;
  }
  controls_.SetEnabled(Toolbar1Control("previousdata"), true);
  ReadNextMember();
  return true;
}

// The first member of a sequence over one reference picture leaves its areas
// and start points in the travel set, without their displacements, so that
// each next member searches them anew.
bool AreaForm::SaveAndMoveOn() {
  if (s_.NbSeq > 1 && s_.SeqRefChange == 0 && CurFile == 1) {
    std::fill(s_.StartOk.begin(), s_.StartOk.end(), false);
    SauveAOI(*this, kTravelSet);
  }
  if (!SauveDonArea(*this, CurFile)) return false;
  if (At(CurFile) < DoneFlags.size()) DoneFlags[At(CurFile)] = true;
  ++CurFile;
  return true;
}

// A member saved before is read back as it was saved; a new one takes its
// pictures from its own file and, over one reference picture, its areas and
// start points from the travel set.
void AreaForm::ReadNextMember() {
  const bool done = At(CurFile) < DoneFlags.size() && DoneFlags[At(CurFile)];
  if (done) {
    LecDonArea(*this, CurFile, false);
    return;
  }
  if (!LecDonArea(*this, CurFile, true) || s_.SeqRefChange != 0) return;
  controls_.SetEnabled("Toolbar1", false);
  ui_.DoEvents();
  LecAOI(*this, kTravelSet);
  controls_.SetEnabled("Toolbar1", true);
}

void AreaForm::EndData() {
  controls_.SetEnabled(Toolbar1Control("nextdata"), false);
  while (s_.AreaOpen && CurFile <= s_.NbSeq)
    if (!NextData()) return;
}

void AreaForm::PreviousData() {
  if (CurFile <= 1) return;
  --CurFile;
  ReadMember(CurFile);
  if (CurFile == 1) controls_.SetEnabled(Toolbar1Control("previousdata"), false);
}

void AreaForm::Unload() {
  for (const char* timer : {"Timer1", "Timer2", "Timer3"}) controls_.SetChecked(timer, false);
  s_.AreaOpen = false;
  ui_.Frame().SetVisible("AreaForm", false);
  ui_.Frame().SetVisible("Pub", true);
}

}  // namespace tessiva
