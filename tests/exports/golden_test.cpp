// Golden vectors of all exports that have some: vectors/<room>/<function>[.tag].vec
#include <gtest/gtest.h>

#include <filesystem>

#include "exports/call.h"

namespace test {
namespace {

namespace fs = std::filesystem;

std::vector<fs::path> vectorFiles() {
  std::vector<fs::path> files;
  for (const auto& entry : fs::recursive_directory_iterator(TEST_DATA_DIR))
    if (entry.path().extension() == ".vec") files.push_back(entry.path());
  std::sort(files.begin(), files.end());
  return files;
}

// Whether a header says that this destination may not be this source.
bool forbidsOneBuffer(const std::string& function, const std::string& source) {
  for (const char* codec : {"GSMAMR", "AMRWB", "G723"})  // nowhere
    if (function.find(codec) != std::string::npos) return true;
  for (const char* apart : {"zppsDecomposeDCTToMLT_G722_16s", "zppsDecomposeMLTToDCT_G722_16s", "zppsConvPartial_16s_Sfs",
                            "zppsAdaptiveCodebookGain_G729_16s", "zppsAdaptiveCodebookGain_G729A_16s"})
    if (function == apart) return true;
  if (function == "zppsCrossCorr_NormM_16s" && source == "signal") return true;
  return source == "coef" || source == "refl" || source == "impulse" || source == "a" || source == "lpc";
}

class Golden : public testing::TestWithParam<fs::path> {};

TEST_P(Golden, Matches) {
  const std::string stem = GetParam().stem().string(), function = stem.substr(0, stem.find('.'));
  const auto table = allExports();
  const auto found = std::find_if(table.begin(), table.end(), [&](const Export& e) { return e.name == function; });
  ASSERT_NE(found, table.end()) << function << " has vectors but no row";
  const auto cases = readGolden(GetParam().string());
  ASSERT_FALSE(cases.empty());
  const Place places[] = {{Place::Kind::end, 0},
                          {Place::Kind::start, 0},
                          {Place::Kind::middle, 0},
                          {Place::Kind::middle, 2},
                          {Place::Kind::middle, 8}};
  for (const GoldenCase& golden : cases)
    for (const Place place : places) {
      Call call(*found, golden, place);
      ASSERT_EQ(call(), golden.status) << golden.label;
      ASSERT_EQ(call.difference(golden), "") << golden.label;
      ASSERT_EQ(call.wrongWrites(true), "") << golden.label;
    }
}

// The very same buffer may be source and destination wherever the headers do not forbid it.
TEST_P(Golden, MatchesWithSourceAndDestinationInOneBuffer) {
  const std::string stem = GetParam().stem().string(), function = stem.substr(0, stem.find('.'));
  const auto table = allExports();
  const Export& e = *std::find_if(table.begin(), table.end(), [&](const Export& x) { return x.name == function; });
  std::vector<GoldenCase> cases;
  for (std::size_t from = 0; from < e.arguments.size(); ++from)
    for (std::size_t to = 0; to < e.arguments.size(); ++to) {
      const Argument &source = e.arguments[from], &destination = e.arguments[to];
      if (source.role != Argument::Role::in || destination.role != Argument::Role::out ||
          source.element != destination.element || forbidsOneBuffer(function, source.name))
        continue;
      if (cases.empty()) cases = readGolden(GetParam().string());
      for (const GoldenCase& golden : cases) {
        Call together(e, golden, {});
        if (golden.status < 0 || !together.share(from, to)) continue;
        Call apart(e, golden, {});
        apart();
        ASSERT_EQ(together(), golden.status);
        for (std::size_t i = 0; i < e.arguments.size(); ++i)
          if (i != from && e.arguments[i].isBuffer() && apart[i].pointer != nullptr) {
            ASSERT_EQ(apart.contents(i), together.contents(i)) << source.name << " as " << destination.name;
          }
      }
    }
}

std::string nameOf(const testing::TestParamInfo<fs::path>& info) {
  std::string name = info.param.stem().string();
  std::replace(name.begin(), name.end(), '.', '_');
  return name;
}
INSTANTIATE_TEST_SUITE_P(Vectors, Golden, testing::ValuesIn(vectorFiles()), nameOf);

}  // namespace
}  // namespace test
