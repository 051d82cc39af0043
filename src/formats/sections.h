// The key-file sections that the data, result and side files share: one
// reader and one writer a section. Where the files really differ in how a
// section is read, the reader takes the file's kind.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "formats/content.h"
#include "state/appstate.h"
#include "state/keyfile.h"

namespace tessiva {

// The three kinds of file that carry the shared sections.
enum class FileKind {
  DataFile,  // .don: the setup window's and the solver's input
  AreaSet,   // -aoi.ini and -AOS.ini: named sets, whose missing keys read -1
  Result,    // .res: a data file with the solver's block
};

// One line and its LF ending.
void AppendLine(std::string& out, std::string_view line);
// "  key=value": files written here indent their keys with two blanks.
void AppendKey(std::string& out, std::string_view key, std::string_view value);
// A numbered key: stem and number without a blank ("x3"), and "x3-7" with a second number.
std::string NumberedKey(std::string_view stem, int32_t i);
std::string NumberedKey(std::string_view stem, int32_t i, int32_t j);

// The banner comment and [RELEASE] section every data file starts with;
// `version` is the program's title.
void AppendBanner(std::string& out, std::string_view version);

// [RELEASE] date; files made before the key existed count as made today.
int32_t ReadReleaseDate(const KeyFile& keys);
// [PICTURES]: both names, or an error when either is missing.
Parsed<PictureNames> ReadPictureNames(const KeyFile& keys);
Parameters ReadParameters(const KeyFile& keys);
// [UNIT]: a missing name reads `defaultName` (data files say "Pixel", results "pixel").
Units ReadUnits(const KeyFile& keys, std::string_view defaultName);
// [EXTRA]: nothing when the file lists no value.
Parsed<std::optional<ExtraValues>> ReadExtraValues(const KeyFile& keys);
Material ReadMaterial(const KeyFile& keys);
FormingLimitZone ReadFormingLimitZone(const KeyFile& keys);
Crack ReadCrack(const KeyFile& keys);
// [OUTLINES]. A data file skips tagged areas (their gauges lay them again) and
// leaves out a vertex whose x is missing; a set reads none for a count of -1
// or 0 and stops an outline at its first -1; a result reads every slot.
Parsed<Outlines> ReadOutlines(const KeyFile& keys, FileKind kind);
// [STARTPOINTS]. Only an unknown displacement leaves a point of a data file
// unsolved; a point of a set is solved when both displacements are there.
Parsed<StartPointList> ReadStartPoints(const KeyFile& keys, FileKind kind);
// [GAGES]: the gauges of which all six keys are found, in the file's order.
Parsed<GageStore> ReadGages(const KeyFile& keys);

// [GAGES], only when at least one gauge exists.
void WriteGages(std::string& out, const GageStore& gages);
// [OUTLINES] with the slots given; TagBox only for a tagged slot.
void WriteOutlines(std::string& out, const Outlines& outlines);
void WriteStartPoints(std::string& out, const StartPointList& points);
// [EXTRA]: the heading always, the values when there are any.
void WriteExtraValues(std::string& out, const ExtraValues& extra);
void WriteUnits(std::string& out, const Units& units);
void WriteMaterial(std::string& out, const Material& material);
// [CLF] when the zone is on, [FISSURE] when the crack is.
void WriteFormingLimitAndCrack(std::string& out, const FormingLimitZone& clf, const Crack& crack);

// The sections of AreaContent, each read by its kind's rules; the first
// section that can't be used.
Parsed<AreaContent> ReadAreaContent(const KeyFile& keys, FileKind kind);
// The sections of AreaContent in the order of the files; [OUTLINES] also
// when it has no slot, unless `outlinesOnlyWhenAny`.
void WriteAreaContent(std::string& out, const AreaContent& content, bool outlinesOnlyWhenAny);

// The sections as AppState holds them, and back. The outline slots taken are
// 1..count; start points and their current one follow the list's rules.
Outlines OutlinesOf(const AppState& s, int32_t count);
void ApplyOutlines(const Outlines& outlines, AppState& s);
StartPointList StartPointsOf(const AppState& s);
// The areas of the state (its first `areaSlots` slots) with a window's gauges and extra values.
AreaContent AreaContentOf(const AppState& s, int32_t areaSlots, const GageStore& gages, ExtraValues extra);
void ApplyStartPoints(const StartPointList& points, AppState& s);
Units UnitsOf(const AppState& s);
void ApplyUnits(const Units& units, AppState& s);
Parameters ParametersOf(const AppState& s);
void ApplyParameters(const Parameters& p, AppState& s);
void ApplyMaterial(const Material& material, AppState& s);
FormingLimitZone FormingLimitZoneOf(const AppState& s);
void ApplyFormingLimitZone(const FormingLimitZone& clf, AppState& s);
Crack CrackOf(const AppState& s);
void ApplyCrack(const Crack& crack, AppState& s);

// The status text of a data, sequence or result file that can't be used.
std::string NotRightFormattedMessage(const std::string& path);

}  // namespace tessiva
