#include "state/settings.h"

#include <algorithm>

#include "state/keyfile.h"
#include "state/numtext.h"

namespace tessiva {

void ReadFormingLimitCurve(AppState& s) {
  s.ClfXMin = -10;
  s.ClfXMax = 10;
  s.ClfYMin = -15;
  s.ClfYMax = 25;
  s.ClfNumber = std::clamp(GetPrivateProfileIntA("CLFSEC", "NUMBER", 0, s.IniPath), 0, 10000);
  s.ClfX.assign(static_cast<size_t>(s.ClfNumber) + 1, 0);
  s.ClfY.assign(static_cast<size_t>(s.ClfNumber) + 1, 0);
  for (int32_t i = 1; i <= s.ClfNumber; ++i) {
    const int32_t x = GetPrivateProfileIntA("CLFSEC", "X" + StrTrim(i), 0, s.IniPath);
    const int32_t y = GetPrivateProfileIntA("CLFSEC", "Y" + StrTrim(i), 0, s.IniPath);
    s.ClfX[static_cast<size_t>(i)] = x;
    s.ClfY[static_cast<size_t>(i)] = y;
    s.ClfXMin = std::min(s.ClfXMin, x);
    s.ClfXMax = std::max(s.ClfXMax, x);
    s.ClfYMin = std::min(s.ClfYMin, y);
    s.ClfYMax = std::max(s.ClfYMax, y);
  }
}

void RememberLastDir(AppState& s, const std::string& dir) {
  s.LastDir = dir;
  WritePrivateProfileStringA("PATH", "LastDir", s.LastDir, s.IniPath);
}

}  // namespace tessiva
