#include "state/parameters.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "state/numtext.h"

namespace tessiva {

void ClampPatternSizesAndPrecision(AppState& s) {
  if (s.LpatMin > s.LpatMax) std::swap(s.LpatMin, s.LpatMax);
  if (s.LpatMin < 6) s.LpatMin = 6;
  if (s.LpatMax > 32) s.LpatMax = 32;
  if (s.Precision < 1 || s.Precision > 1001) s.Precision = 100;
  s.Lpat = s.LpatMin;
}

void ClampGridStep(AppState& s) { s.Lgrid = std::clamp(s.Lgrid, 2, 20); }

void DeriveSteps(AppState& s) {
  s.LgridBy4 = s.Lgrid * 4;
  s.Lpas = 2 * (s.Lgrid / 2);
}

void ClampParameters(AppState& s) {
  ClampPatternSizesAndPrecision(s);
  s.LpatEven = 2 * (s.LpatMin / 2);
  ClampGridStep(s);
  DeriveSteps(s);
}

int64_t PatternCapacity(int32_t lima, int32_t hima, int32_t lpas) {
  if (lima <= 0 || hima <= 0 || lpas <= 0) return 0;
  return static_cast<int64_t>(Round(static_cast<double>(hima) / lpas * (static_cast<double>(lima) / lpas)));
}

bool SetPatternCapacity(AppState& s) {
  const int64_t capacity = PatternCapacity(s.Lima, s.Hima, s.Lpas);
  if (capacity > kMaxPatterns) return false;
  s.NbPatMax = static_cast<int32_t>(capacity);
  const double side = std::sqrt(static_cast<double>(s.NbPatMax)) + 2.0;
  s.NbNoeudsMax = RoundToInt32(side * side);
  return true;
}

bool AllocPat(AppState& s) {
  if (!SetPatternCapacity(s)) return false;
  const int32_t half = RoundToInt32(s.NbPatMax / 2.0);
  const size_t n = static_cast<size_t>(s.NbPatMax) + 1;
  s.XPat.assign(n, 0);
  s.YPat.assign(n, 0);
  s.BadPat.assign(static_cast<size_t>(half) + 1, 0);
  for (std::vector<int32_t>* a : {&s.FlagPat, &s.Res1Pat, &s.Res2Pat}) a->assign(n, 0);
  for (std::vector<double>* a : {&s.D1Pat, &s.D2Pat, &s.AuPat, &s.BuPat, &s.CuPat, &s.DuPat, &s.AvPat, &s.BvPat,
                                 &s.CvPat, &s.DvPat, &s.Res3Pat, &s.NormPat})
    a->assign(n, 0.0);
  s.Mailles.assign(static_cast<size_t>(s.NbPatMax) + 1, MeshCell{});
  s.Noeuds.assign(static_cast<size_t>(s.NbNoeudsMax) + 1, MeshNode{});
  return true;
}

std::string TooManyPatternsMessage(const AppState& s) {
  return "a grid step of " + StrTrim(s.Lpas) + " pixels over a picture of " + StrTrim(s.Lima) + " x " +
         StrTrim(s.Hima) + " pixels makes " + StrTrim(static_cast<double>(PatternCapacity(s.Lima, s.Hima, s.Lpas))) +
         " patterns, more than the 16,777,216 Tessiva holds: take a larger grid step";
}

bool AllocPatAndPictures(AppState& s) {
  s.PixRef.Allocate(s.Lima, s.Hima);
  s.PixDef.Allocate(s.Lima, s.Hima);
  return AllocPat(s);
}

}  // namespace tessiva
