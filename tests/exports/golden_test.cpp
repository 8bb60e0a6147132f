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

std::string nameOf(const testing::TestParamInfo<fs::path>& info) {
  std::string name = info.param.stem().string();
  std::replace(name.begin(), name.end(), '.', '_');
  return name;
}
INSTANTIATE_TEST_SUITE_P(Vectors, Golden, testing::ValuesIn(vectorFiles()), nameOf);

}  // namespace
}  // namespace test
