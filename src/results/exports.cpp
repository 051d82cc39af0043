#include "results/exports.h"

#include <array>
#include <charconv>
#include <string_view>
#include <vector>

#include "results/mesh.h"
#include "results/resultfile.h"
#include "state/files.h"
#include "state/numtext.h"

namespace tessiva {
namespace {

// The organisation the files name.
constexpr std::string_view kOrganisation = "The Tessiva developers";

class Lines {
 public:
  Lines& operator<<(std::string_view text) {
    text_ += text;
    return *this;
  }
  // Ends the current line.
  void End() { text_ += '\n'; }
  void Line(std::string_view text) {
    text_ += text;
    End();
  }
  const std::string& Text() const { return text_; }

 private:
  std::string text_;
};

std::string I10(double value) { return FormatFortran(value, "I10"); }

const MeshNode& NodeAt(const AppState& s, int32_t n) { return s.Noeuds[static_cast<size_t>(n)]; }

std::vector<int32_t> ValidNodes(const AppState& s) {
  std::vector<int32_t> nodes;
  for (int32_t n = 1; n <= s.NbNoeuds; ++n)
    if (NodeAt(s, n).Valide) nodes.push_back(n);
  return nodes;
}

// A listed pattern's cell and its corners; a pattern outside the mesh has
// cell 0, whose corners are node 0.
struct Element {
  int32_t number = 0;
  std::array<int32_t, 4> noeud{};
  int32_t flag = 0;  // the pattern's FlagPat
};

// Elements follow patterns, in pattern order: the good ones, or every one
// with `showBad` 1.
std::vector<Element> Elements(const AppState& s, int32_t showBad) {
  std::vector<Element> elements;
  for (int32_t i = 1, count = PatternsHeld(s); i <= count; ++i) {
    if (s.FlagPat[i] != -1 && showBad != 1) continue;
    const int32_t cell = NumMaille(s, s.XPat[i], s.YPat[i]);
    elements.push_back({cell, cell < static_cast<int32_t>(s.Mailles.size())
                                  ? s.Mailles[static_cast<size_t>(cell)].Noeud
                                  : std::array<int32_t, 4>{},
                        s.FlagPat[i]});
  }
  return elements;
}

std::string CfrText(const AppState& s, int32_t showBad) {
  const std::vector<int32_t> nodes = ValidNodes(s);
  Lines out;
  out.Line("*NODE Num X Y");
  for (const int32_t n : nodes) out.Line(I10(n) + "  " + Str(NodeAt(s, n).X) + "  " + Str(NodeAt(s, n).Y));
  out.Line("*ELEMENT Num N1 N2 N3 N4");
  for (const Element& e : Elements(s, showBad)) {
    out << I10(e.number);
    for (const int32_t node : e.noeud) out << I10(node);
    out.Line(" ");
  }
  out.Line("*DISPLACEMENT U1 U2");
  for (const int32_t n : nodes) out.Line(I10(n) + "  " + Str(NodeAt(s, n).U) + "  " + Str(NodeAt(s, n).V));
  out.Line("*STRAIN E11 E22 E12 H1 H2 TETA PSI GAMMA");
  for (const int32_t n : nodes) {
    const MeshNode& node = NodeAt(s, n);
    out << I10(n);
    for (const double value : {node.E11, node.E22, node.E12, node.H1, node.H2, node.Teta, node.Psi, node.Gamma})
      out << "  " << Str(value);
    out.End();
  }
  return out.Text();
}

std::string UnvText(const AppState& s, int32_t showBad) {
  const std::string delimiter = FormatFortran(-1, "I6");
  const std::vector<int32_t> nodes = ValidNodes(s);
  const auto e13 = [](double value) { return FormatFortran(value, "3E13.5"); };
  Lines out;
  out.Line(delimiter);
  out.Line(FormatFortran(2411, "I6"));
  for (const int32_t n : nodes) {
    out.Line(I10(n) + I10(1) + I10(1) + I10(11));
    out.Line(FormatFortran(NodeAt(s, n).X, "3D25.16") + FormatFortran(NodeAt(s, n).Y, "3D25.16") +
             FormatFortran(0, "3D25.16"));
  }
  out.Line(delimiter);
  out.Line(delimiter);
  out.Line(FormatFortran(2412, "I6"));
  for (const Element& e : Elements(s, showBad)) {
    out.Line(I10(e.number) + I10(94) + I10(2) + I10(1) + I10(7) + I10(4));
    for (const int32_t node : e.noeud) out << I10(node);
    out.Line(" ");
  }
  out.Line(delimiter);
  out.Line(delimiter);
  out.Line(FormatFortran(2414, "I6"));
  out.Line(I10(1));
  out.Line("DEPLACEMENTS");
  out.Line(I10(1));
  out.Line("Valeurs nodales");
  out.Line("Date de creation : " + Format(TodayNumber(), "0000-00-00"));
  out.Line("Organisation : " + std::string(kOrganisation));
  out.Line("Telephone : not published");
  out.Line("Mail : not published");
  out.Line(I10(1) + I10(1) + I10(3) + I10(8) + I10(2) + I10(6));
  out.Line(I10(-10) + I10(0) + I10(1) + I10(1) + I10(1) + I10(0) + I10(0) + I10(0));
  out.Line(I10(s.NbNoeuds) + I10(0));
  for (int line = 0; line < 2; ++line) out.Line(e13(0) + e13(0) + e13(0) + e13(0) + e13(0) + e13(0));
  for (const int32_t n : nodes) {
    out.Line(I10(n));
    out.Line(e13(NodeAt(s, n).U) + e13(NodeAt(s, n).V) + e13(0) + e13(0) + e13(0) + e13(0));
  }
  out.Line(delimiter);
  return out.Text();
}

std::string Coordinate(double value) { return Format(value, "0000.00"); }

// Elements for every pattern, whatever its flag. The material constants are
// the writer's own, not the file's.
std::string InpText(const AppState& s) {
  Lines out;
  out.Line("*HEADING");
  out.Line("*PREPRINT,ECHO=NO,HISTORY=NO,MODEL=NO");
  out.Line("Tessiva - " + std::string(kOrganisation));
  out.Line("*NODE, SYSTEM=R");
  for (int32_t n = 1; n <= s.NbNoeuds; ++n)
    out.Line(Str(n) + "," + Coordinate(NodeAt(s, n).X) + "," + Coordinate(-NodeAt(s, n).Y) + ",0.0");
  out.Line("*ELEMENT,TYPE=S4R,ELSET=MAIN");
  for (const Element& e : Elements(s, 1)) {
    out << Str(e.number);
    for (const int32_t node : e.noeud) out << "," << Str(node);
    out.End();
  }
  out.Line("*SHELL SECTION,ELSET=MAIN,MATERIAL=M0000001");
  out.Line("1.000E-03 ,   3");
  out.Line("*MATERIAL,NAME=M0000001");
  out.Line("*ELASTIC,TYPE=ISOTROPIC");
  out.Line("2.0E+1 , 2.900E-01");
  out.Line("*RESTART,WRITE");
  out.Line("*STEP,NLGEOM");
  out.Line("*STATIC");
  out.Line("*BOUNDARY,OP=NEW");
  for (const int32_t n : ValidNodes(s)) {
    out.Line(Str(n) + ",1,1," + Coordinate(NodeAt(s, n).U));
    out.Line(Str(n) + ",2,2," + Coordinate(-NodeAt(s, n).V));
  }
  out.Line("*END STEP");
  return out.Text();
}

// The shortest text that reads back as the same double.
std::string Exact(double value) {
  char text[32];
  return std::string(text, std::to_chars(text, text + sizeof text, value).ptr);
}

// A picture's y (pointing down) as the y of a viewer's frame (pointing up), without a -0.
double Upward(double y) { return y == 0.0 ? 0.0 : -y; }

// The strain measures (percent) and angles (degrees) of a node, as the
// viewer formats name them.
struct NodeMeasure {
  std::string_view name;
  double MeshNode::*value;
  bool angle;
};
constexpr std::array<NodeMeasure, 9> kNodeMeasures{{{"E11", &MeshNode::E11, false},
                                                    {"E22", &MeshNode::E22, false},
                                                    {"E12", &MeshNode::E12, false},
                                                    {"H1", &MeshNode::H1, false},
                                                    {"H2", &MeshNode::H2, false},
                                                    {"H3", &MeshNode::H3, false},
                                                    {"TETA", &MeshNode::Teta, true},
                                                    {"PSI", &MeshNode::Psi, true},
                                                    {"GAMMA", &MeshNode::Gamma, true}}};

std::string CsvField(const std::string& text) {
  if (text.find_first_of(",\"\r\n") == std::string::npos) return text;
  std::string quoted = "\"";
  for (const char c : text) quoted += c == '"' ? std::string("\"\"") : std::string(1, c);
  return quoted + '"';
}

std::string CsvText(const AppState& s) {
  const auto withUnit = [](std::string_view name, const std::string& unit) {
    return "," + CsvField(std::string(name) + " (" + unit + ")");
  };
  Lines out;
  out << "Node" << withUnit("X", s.UnitNameX) << withUnit("Y", s.UnitNameY) << withUnit("U", s.UnitNameX)
      << withUnit("V", s.UnitNameY);
  for (const NodeMeasure& measure : kNodeMeasures) out << withUnit(measure.name, measure.angle ? "deg" : "%");
  out.End();
  for (const int32_t n : ValidNodes(s)) {
    const MeshNode& node = NodeAt(s, n);
    out << std::to_string(n) << "," << Exact(node.X * s.UnitPX) << "," << Exact(node.Y * s.UnitPY) << ","
        << Exact(node.U * s.UnitPX) << "," << Exact(node.V * s.UnitPY);
    for (const NodeMeasure& measure : kNodeMeasures) out << "," << Exact(node.*measure.value);
    out.End();
  }
  return out.Text();
}

// An ASCII data array of a VTK file, `components` values a tuple, one tuple a line.
template <typename Values>
void VtkArray(Lines& out, std::string_view type, std::string_view name, int components, const Values& values) {
  out << "        <DataArray type=\"" << type << "\"";
  if (!name.empty()) out << " Name=\"" << name << "\"";
  out << " NumberOfComponents=\"" << std::to_string(components) << "\" format=\"ascii\">";
  out.End();
  for (size_t i = 0; i < values.size(); ++i) {
    out << (i % static_cast<size_t>(components) == 0 ? "          " : " ") << values[i];
    if ((i + 1) % static_cast<size_t>(components) == 0) out.End();
  }
  out.Line("        </DataArray>");
}

// VTK's code of a four-node quadrilateral.
constexpr std::string_view kVtkQuad = "9";

std::string VtuText(const AppState& s, int32_t showBad) {
  // Nodes are points 0..NbNoeuds-1; a node without a displacement reads 0 and "valid" 0.
  std::vector<std::string> points, displacement, valid, u, v;
  std::array<std::vector<std::string>, kNodeMeasures.size()> measures;
  for (int32_t n = 1; n <= s.NbNoeuds; ++n) {
    const MeshNode& node = NodeAt(s, n);
    const double scale = node.Valide ? 1.0 : 0.0;
    points.insert(points.end(), {Exact(node.X * s.UnitPX), Exact(Upward(node.Y * s.UnitPY)), "0"});
    displacement.insert(displacement.end(),
                        {Exact(scale * node.U * s.UnitPX), Exact(Upward(scale * node.V * s.UnitPY)), "0"});
    u.push_back(Exact(scale * node.U * s.UnitPX));
    v.push_back(Exact(scale * node.V * s.UnitPY));
    valid.push_back(node.Valide ? "1" : "0");
    for (size_t m = 0; m < kNodeMeasures.size(); ++m) measures[m].push_back(Exact(scale * (node.*kNodeMeasures[m].value)));
  }
  // A pattern outside the mesh has no corners and gives no cell.
  std::vector<std::string> connectivity, offsets, types, flags;
  for (const Element& e : Elements(s, showBad)) {
    if (e.noeud[0] == 0) continue;
    for (const int32_t node : e.noeud) connectivity.push_back(std::to_string(node - 1));
    offsets.push_back(std::to_string(connectivity.size()));
    types.emplace_back(kVtkQuad);
    flags.push_back(std::to_string(e.flag));
  }
  Lines out;
  out.Line("<?xml version=\"1.0\"?>");
  out.Line("<VTKFile type=\"UnstructuredGrid\" version=\"0.1\" byte_order=\"LittleEndian\">");
  out.Line("  <UnstructuredGrid>");
  out.Line("    <Piece NumberOfPoints=\"" + std::to_string(s.NbNoeuds) + "\" NumberOfCells=\"" +
           std::to_string(types.size()) + "\">");
  out.Line("      <PointData Vectors=\"Displacement\">");
  VtkArray(out, "Float64", "Displacement", 3, displacement);
  VtkArray(out, "Float64", "U", 1, u);
  VtkArray(out, "Float64", "V", 1, v);
  for (size_t m = 0; m < kNodeMeasures.size(); ++m) VtkArray(out, "Float64", kNodeMeasures[m].name, 1, measures[m]);
  VtkArray(out, "UInt8", "valid", 1, valid);
  out.Line("      </PointData>");
  out.Line("      <CellData Scalars=\"flag\">");
  VtkArray(out, "Int32", "flag", 1, flags);
  out.Line("      </CellData>");
  out.Line("      <Points>");
  VtkArray(out, "Float64", "", 3, points);
  out.Line("      </Points>");
  out.Line("      <Cells>");
  VtkArray(out, "Int64", "connectivity", 4, connectivity);
  VtkArray(out, "Int64", "offsets", 1, offsets);
  VtkArray(out, "UInt8", "types", 1, types);
  out.Line("      </Cells>");
  out.Line("    </Piece>");
  out.Line("  </UnstructuredGrid>");
  out.Line("</VTKFile>");
  return out.Text();
}

}  // namespace

bool SauveCfr(const AppState& s, int32_t showBad, const std::string& file) {
  return WriteFileAtomically(file, CfrText(s, showBad));
}

bool SauveUnv(const AppState& s, int32_t showBad, const std::string& file) {
  return WriteFileAtomically(file, UnvText(s, showBad));
}

bool SauveInp(const AppState& s, const std::string& file) { return WriteFileAtomically(file, InpText(s)); }

bool SauveVtu(const AppState& s, int32_t showBad, const std::string& file) {
  return WriteFileAtomically(file, VtuText(s, showBad));
}

bool SauveCsv(const AppState& s, const std::string& file) { return WriteFileAtomically(file, CsvText(s)); }

}  // namespace tessiva
