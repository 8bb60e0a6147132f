#include "support/golden.h"

#include <fstream>
#include <sstream>
#include <stdexcept>

namespace test {

std::vector<GoldenCase> readGolden(const std::string& path) {
  std::ifstream file(path);
  if (!file) throw std::runtime_error("cannot read " + path);
  std::vector<GoldenCase> cases;
  double relative = 0, absolute = 0;
  for (std::string line; std::getline(file, line);) {
    std::istringstream words(line);
    std::string kind, type, name;
    std::size_t count = 0;
    if (!(words >> kind) || kind[0] == '#') continue;
    if (kind == "tolerance") {
      words >> relative >> absolute;
      if (!cases.empty()) cases.back().relative = relative, cases.back().absolute = absolute;
    } else if (kind == "case") {
      cases.push_back({});
      std::getline(words >> std::ws, cases.back().label);
      cases.back().relative = relative, cases.back().absolute = absolute;
    } else if (kind == "status") {
      words >> cases.at(cases.size() - 1).status;
    } else if ((kind == "in" || kind == "out") && words >> type >> name >> count) {
      std::vector<double> values(count);
      for (double& v : values)
        if (!(words >> v)) throw std::runtime_error(path + ": too few values for " + name);
      auto& side = kind == "in" ? cases.at(cases.size() - 1).in : cases.at(cases.size() - 1).out;
      side[name] = std::move(values);
    } else {
      throw std::runtime_error(path + ": unknown line " + line.substr(0, 60));
    }
  }
  return cases;
}

}  // namespace test
