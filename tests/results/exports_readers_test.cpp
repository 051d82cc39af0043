// The exports of a real mesh opened by the programs users open them in:
// CalculiX runs the Abaqus file to its end, meshio reads every node and
// element of it, Gmsh reads every node and element of the Universal file,
// and meshio and Python's csv reader find in the VTK grid and the table the
// values of the clean text file. A test whose program isn't installed is
// skipped.
#include <gtest/gtest.h>

#include <cstdlib>
#include <optional>
#include <sstream>

#include "results/analysisfixture.h"
#include "results/exports.h"

namespace tessiva {
namespace {

using testing::Displacement;

std::string Quoted(const std::string& text) { return "'" + text + "'"; }

bool Succeeds(const std::string& command) { return std::system((command + " >/dev/null 2>&1").c_str()) == 0; }

bool Installed(const std::string& program) { return Succeeds("command -v " + program); }

// The interpreter that can import meshio: the system's own first, since a
// Python of the user's may stand before it on the path.
std::optional<std::string> PythonWithMeshio() {
  for (const std::string python : {"/usr/bin/python3", "python3"})
    if (Succeeds(python + " -c 'import meshio'")) return python;
  return std::nullopt;
}

// The counts after the section line `section` of a Gmsh 2 file: $Nodes and
// $Elements each start with their count.
int CountAfter(const std::string& msh, const std::string& section) {
  std::istringstream lines(msh);
  std::string line;
  while (std::getline(lines, line))
    if (line == section && std::getline(lines, line)) return std::stoi(line);
  return -1;
}

class ExportReaders : public testing::AnalysisFixture {
 protected:
  // A block of 8 x 6 patterns under a stretch with shear, all good.
  void SetUp() override {
    testing::ResultHead head;
    head.lpatMin = head.lpatMax = head.lgrid = 10;
    const auto field = [](double x, double y) { return Displacement{0.05 * (x - 100) + 0.02 * (y - 100), 0.5}; };
    ASSERT_TRUE(ReadResult(head, testing::GridPatterns(field, 60, 80, 8, 6, 10, 10)));
    for (int32_t i = 1; i <= s.NbPat; ++i) ASSERT_EQ(s.FlagPat[i], -1);
    for (int32_t n = 1; n <= s.NbNoeuds; ++n) validNodes += s.Noeuds[static_cast<size_t>(n)].Valide;
  }

  // Runs a command in the scratch directory; its output, or nothing when it failed.
  std::optional<std::string> Run(const std::string& command) {
    const std::string log = dir.File("run.log");
    const int status = std::system(("cd " + Quoted(dir.Path()) + " && " + command + " >" + Quoted(log) + " 2>&1").c_str());
    const std::string output = dir.Read("run.log");
    if (status != 0) {
      ADD_FAILURE() << command << " failed:\n" << output;
      return std::nullopt;
    }
    return output;
  }

  int validNodes = 0;
};

TEST_F(ExportReaders, CalculixRunsTheAbaqusFileToTheEnd) {
  if (!Installed("ccx")) GTEST_SKIP() << "CalculiX (ccx) isn't installed";
  ASSERT_TRUE(SauveInp(s, dir.File("mesh.inp")));
  const std::optional<std::string> output = Run("ccx -i mesh");
  ASSERT_TRUE(output);
  EXPECT_NE(output->find("Job finished"), std::string::npos) << *output;
}

TEST_F(ExportReaders, MeshioReadsEveryNodeAndElementOfTheAbaqusFile) {
  const std::optional<std::string> python = PythonWithMeshio();
  if (!python) GTEST_SKIP() << "meshio isn't installed";
  ASSERT_TRUE(SauveInp(s, dir.File("mesh.inp")));
  const std::optional<std::string> output =
      Run(*python + " -c 'import meshio; m = meshio.read(\"mesh.inp\"); "
                    "print(len(m.points), sum(len(c.data) for c in m.cells))'");
  ASSERT_TRUE(output);
  EXPECT_EQ(*output, std::to_string(s.NbNoeuds) + " " + std::to_string(s.NbPat) + "\n");
}

TEST_F(ExportReaders, GmshReadsEveryNodeAndElementOfTheUniversalFile) {
  if (!Installed("gmsh")) GTEST_SKIP() << "Gmsh isn't installed";
  ASSERT_TRUE(SauveUnv(s, 0, dir.File("mesh.unv")));
  ASSERT_TRUE(Run("gmsh -0 mesh.unv -o mesh.msh -format msh2"));
  const std::string msh = dir.Read("mesh.msh");
  EXPECT_EQ(CountAfter(msh, "$Nodes"), validNodes);
  EXPECT_EQ(CountAfter(msh, "$Elements"), s.NbPat);
}

// Reads mesh.cfr, mesh.vtu and mesh.csv; checks that the viewer files give
// every valid node of the text file with the same values, positions and
// displacements scaled by the calibration (argv: x and y scale); prints
// "same" or what differs.
constexpr const char* kViewerCheck = R"py(import csv, math, sys
import meshio
sx, sy = float(sys.argv[1]), float(sys.argv[2])
section, cfr = None, {}
for line in open("mesh.cfr"):
    t = line.split()
    if not t:
        continue
    if t[0].startswith("*"):
        section = t[0]
        continue
    if section in ("*NODE", "*DISPLACEMENT", "*STRAIN"):
        cfr.setdefault(int(t[0]), {})[section] = [float(v) for v in t[1:]]
def expected(node):
    x, y = cfr[node]["*NODE"]
    u, v = cfr[node]["*DISPLACEMENT"]
    e11, e22, e12, h1, h2, teta, psi, gamma = cfr[node]["*STRAIN"]
    return {"X": x * sx, "Y": y * sy, "U": u * sx, "V": v * sy, "E11": e11, "E22": e22, "E12": e12,
            "H1": h1, "H2": h2, "TETA": teta, "PSI": psi, "GAMMA": gamma}
def close(a, b):
    return math.isclose(a, b, rel_tol=1e-12, abs_tol=1e-12)
faults = []
rows = {int(r["Node"]): r for r in csv.DictReader(open("mesh.csv", newline=""))}
if set(rows) != set(cfr):
    faults.append("csv nodes differ")
for node, row in rows.items():
    for name, value in expected(node).items():
        unit = "mm" if name in "XYUV" else "deg" if name in ("TETA", "PSI", "GAMMA") else "%"
        if not close(float(row[name + " (" + unit + ")"]), value):
            faults.append("csv %s of %d" % (name, node))
m = meshio.read("mesh.vtu")
for node in cfr:
    want, i = expected(node), node - 1
    got = {"X": m.points[i][0], "Y": -m.points[i][1]}
    got.update({name: m.point_data[name][i] for name in want if name not in ("X", "Y")})
    if m.point_data["valid"][i] != 1 or not all(close(got[k], want[k]) for k in want):
        faults.append("vtu node %d" % node)
quads = sum(len(c.data) for c in m.cells if c.type == "quad")
print("same" if not faults else faults[:5], len(m.points), quads)
)py";

TEST_F(ExportReaders, MeshioAndPythonCsvFindTheValuesOfTheTextFileInTheViewerFiles) {
  const std::optional<std::string> python = PythonWithMeshio();
  if (!python) GTEST_SKIP() << "meshio isn't installed";
  s.UnitPX = 0.02, s.UnitPY = 0.03;
  s.UnitNameX = s.UnitNameY = "mm";
  ASSERT_TRUE(SauveCfr(s, 0, dir.File("mesh.cfr")));
  ASSERT_TRUE(SauveVtu(s, 0, dir.File("mesh.vtu")));
  ASSERT_TRUE(SauveCsv(s, dir.File("mesh.csv")));
  dir.Write("check.py", kViewerCheck);
  const std::optional<std::string> output = Run(*python + " check.py 0.02 0.03");
  ASSERT_TRUE(output);
  EXPECT_EQ(*output, "same " + std::to_string(s.NbNoeuds) + " " + std::to_string(s.NbPat) + "\n");
}

}  // namespace
}  // namespace tessiva
