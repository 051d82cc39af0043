// The one shared state of a running program. Every window's logic and every
// operation reads and writes these members; each test makes its own.
// Arrays called 1-based are sized n + 1 and used from index 1.
#pragma once

#include <array>
#include <cstdint>
#include <memory_resource>
#include <string>
#include <vector>

#include "state/meshrecords.h"
#include "state/colour.h"

namespace tessiva {

// A picture's grey levels: indices x from 0 to `width` and y from 0 to `height`
// (one more than the picture in each direction), x fastest, y = 0 the top row.
class GreyArray {
 public:
  void Allocate(int32_t width, int32_t height) {
    width_ = width;
    height_ = height;
    values_.assign(static_cast<size_t>(width + 1) * static_cast<size_t>(height + 1), 0);
  }
  int32_t UpperX() const { return width_; }
  int32_t UpperY() const { return height_; }
  int Stride() const { return width_ + 1; }
  bool Contains(int32_t x, int32_t y) const { return x >= 0 && y >= 0 && x <= width_ && y <= height_; }
  int32_t& operator()(int32_t x, int32_t y) { return values_[Index(x, y)]; }
  int32_t operator()(int32_t x, int32_t y) const { return values_[Index(x, y)]; }
  int32_t* Row(int32_t y) { return values_.data() + Index(0, y); }
  const int32_t* Data() const { return values_.data(); }
  bool Empty() const { return values_.empty(); }

 private:
  size_t Index(int32_t x, int32_t y) const { return static_cast<size_t>(y) * static_cast<size_t>(width_ + 1) + static_cast<size_t>(x); }
  int32_t width_ = -1;
  int32_t height_ = -1;
  // From the default memory resource in force when the array was made, which
  // a program may set to suit pictures of many megabytes.
  std::pmr::vector<int32_t> values_;
};

struct AppState {
  static constexpr int kMaxAreas = 20;
  // 50 drawn points and the closing repeat of the first one.
  static constexpr int kMaxVertices = 51;
  static constexpr int kMaxStartPoints = 999;

  // Paths and dialog results.
  std::string StartDir;
  std::string IniPath;
  std::string LastDir;
  std::string ExePath;
  std::string FileName;
  std::string FileTitle;
  std::string Title;

  // Text formats and constants.
  std::string FormatLong = "00.000E+00;-00.00E+00;0.00000000";
  std::string FormatShort = "##0.0000";
  double Pi = 0.0;
  double Klarg = 3.0;
  double DeformScale = 10.0;

  // Mode flags.
  bool AreaOpen = false;
  bool AnalyseOpen = false;
  bool ClfMode = false;
  bool FissureOn = false;

  // Sequence of work.
  int32_t NbSeq = 0;
  int32_t SeqRefChange = 0;
  std::vector<std::string> DataFilePath{""};
  std::vector<std::string> DataFileName{""};
  std::string DataFile;
  std::string ResFile;
  std::string ResName;
  std::string ResultFrom;
  std::string PicRefPath;
  std::string PicDefPath;
  std::string PicRefName;
  std::string PicDefName;
  int32_t FileDate = 0;
  int32_t Lima = 0;
  int32_t Hima = 0;

  // Computational parameters and their derived values.
  int32_t LpatMin = 0;
  int32_t LpatMax = 0;
  int32_t Lgrid = 0;
  int32_t Interpolation = 0;
  int32_t Correlation = 0;
  int32_t LargeStrain = 0;
  int32_t Precision = 0;
  int32_t Lpat = 0;
  int32_t LpatEven = 0;
  int32_t Lpas = 0;
  int32_t LgridBy4 = 0;

  // Units and material.
  std::string UnitNameX = "Pixel";
  std::string UnitNameY = "Pixel";
  double UnitPX = 1.0;
  double UnitPY = 1.0;
  double Young = 210000.0;
  double Poisson = 0.3;

  // Areas of interest: slot NbBox is the free one the next area takes.
  int32_t NbBox = 1;
  std::array<int32_t, kMaxAreas + 1> Nbox{};
  std::array<int32_t, kMaxAreas + 1> TagBox{};
  std::array<std::array<int32_t, kMaxVertices + 1>, kMaxAreas + 1> XBox{};
  std::array<std::array<int32_t, kMaxVertices + 1>, kMaxAreas + 1> YBox{};

  // Forming-limit zone and crack.
  int32_t xstrict = 0;
  int32_t ystrict = 0;
  double XFissureDep = 0.0;
  double YFissureDep = 0.0;
  double XFissureArr = 0.0;
  double YFissureArr = 0.0;
  double RayonFissure = 0.0;

  // Start points.
  int32_t NbStart = 0;
  int32_t CurStart = 0;
  std::vector<int32_t> XStart{0};
  std::vector<int32_t> YStart{0};
  std::vector<int32_t> DuStart{0};
  std::vector<int32_t> DvStart{0};
  std::vector<bool> StartOk{false};

  // Pattern store, sized by AllocPat.
  int32_t NbPat = 0;
  int32_t NbPatMax = 0;
  int32_t NbNoeudsMax = 0;
  std::vector<int32_t> XPat;
  std::vector<int32_t> YPat;
  int32_t NbPatBad = 0;
  std::vector<int32_t> BadPat;

  // Pictures: grey levels and the palette as read, never applied to the levels.
  GreyArray PixRef;
  GreyArray PixDef;
  std::array<Colour, 256> PicRefPalette{};
  std::array<Colour, 256> PicDefPalette{};

  // Forming-limit curve of correl.ini.
  int32_t ClfNumber = 0;
  std::vector<int32_t> ClfX{0};
  std::vector<int32_t> ClfY{0};
  int32_t ClfXMin = -10;
  int32_t ClfXMax = 10;
  int32_t ClfYMin = -15;
  int32_t ClfYMax = 25;

  // Shared buffer of text lines and the count of its head lines: the head of
  // correl.ini, or a result file's lines up to and with [RESULTS].
  std::vector<std::string> TexteLignes;
  int32_t NbLignesEntete = 0;

  // The current result file: arrays parallel to XPat and YPat (1..NbPat),
  // sized by AllocPat and overwritten by each result read.
  std::vector<int32_t> FlagPat;  // -1 good, 1 not good in the file, 0 rejected by the mesh
  std::vector<double> D1Pat;     // displacement at the centre
  std::vector<double> D2Pat;
  std::vector<double> AuPat;  // u = Au x/L + Bu y/L + Cu x y/L^2 + Du from the pattern's first corner
  std::vector<double> BuPat;
  std::vector<double> CuPat;
  std::vector<double> DuPat;
  std::vector<double> AvPat;
  std::vector<double> BvPat;
  std::vector<double> CvPat;
  std::vector<double> DvPat;
  std::vector<int32_t> Res1Pat;  // the solver's fourth line, stored only
  std::vector<int32_t> Res2Pat;
  std::vector<double> Res3Pat;
  std::vector<double> NormPat;  // norm of (Du, Dv) for a good pattern, 0 otherwise
  // Means of D1Pat, D2Pat and NormPat over the good patterns.
  double MoyD1 = 0.0;
  double MoyD2 = 0.0;
  double MoyNorm = 0.0;
  // Extent of the pattern centres. It starts at 0 and is never reset, so the
  // minima stay 0 for positive coordinates and the maxima only grow.
  double XPatMax = 0.0;
  double YPatMax = 0.0;
  double XPatMin = 0.0;
  double YPatMin = 0.0;

  // Analysis mesh over the whole picture: cells 1..NbMailles, nodes 1..NbNoeuds.
  std::vector<MeshCell> Mailles;
  std::vector<MeshNode> Noeuds;
  int32_t NbMailles = 0;
  int32_t NbNoeuds = 0;
  // Working cell and node numbers, read by other operations right after a look-up.
  int32_t CurMaille = 0;
  int32_t CurNoeud = 0;
  int32_t XGridMin = 0;
  int32_t XGridMax = 0;
  int32_t YGridMin = 0;
  int32_t YGridMax = 0;
  // Range of the scatter of accepted nodes, and the copies the range options restore.
  double EcartMin = 0.0;
  double EcartMax = 0.0;
  double EcartMinStored = 0.0;
  double EcartMaxStored = 0.0;

  // Sizes every start-point array for `count` points (index 1..count).
  void ResizeStartPoints(int32_t count);
  // Sizes the sequence lists for `count` members.
  void ResizeSequence(int32_t count);
};

}  // namespace tessiva
