#include "analysis/newanalyse.h"

#include "results/strains.h"
#include "state/files.h"

namespace tessiva {

void NewAnalyse::MinMaxDeformation() {
  BusyPointer busy(ui_);
  ui_.DoEvents();
  if (MaxU == kNoData || MaxV == kNoData) return;
  CalculDeformations(s_, StrainOptions{bInitial, ShowBad(), &Distor});
  RangesOfDeformation();
}

void NewAnalyse::OnOkDistorClick(bool checked) {
  Distor.DistorOn = checked ? -1 : 0;
  controls_.SetChecked("OkDistor", checked);
  if (checked) {
    FileDialogRequest request;
    request.initialDir = s_.LastDir;
    request.defaultExt = "res";
    request.title = "Result for distorsion correction";
    const FileDialogResult chosen = ui_.OpenFileDialog(request);
    // The dialog hands back its "*.res" pattern when cancelled.
    if (chosen.FileName.empty() || chosen.FileName == "*.res") {
      controls_.SetChecked("OkDistor", false);
      Distor.DistorOn = 0;
    } else {
      controls_.SetText("OkDistor", FileNameOf(chosen.FileName));
      LecDistor(Distor, s_, ui_, chosen.FileName);
    }
  }
  MinMaxDeplacement();
  MinMaxDeformation();
  PicAnaRefresh();
}

void NewAnalyse::ShowInfo() { ui_.Frame().SetVisible("Info", true); }

// Filled in with the value ranges and colour scale.
void NewAnalyse::MinMaxDeplacement() {}
// Filled in with the value ranges and colour scale.
void NewAnalyse::RangesOfDeformation() {}
// Filled in with the stress intensity analysis.
void NewAnalyse::CalculKI() {}
// Filled in with the stress intensity analysis.
void NewAnalyse::AfficheKI(bool) {}
// Filled in with the areas of selection and the gauges.
void NewAnalyse::AfficheEtTraiteAOS(bool) {}
// Filled in with the field maps.
void NewAnalyse::PicAnaRefresh() {}
// Filled in with the analysis window's layout.
void NewAnalyse::LayOutPicAna() {}

}  // namespace tessiva
