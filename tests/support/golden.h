// Golden vectors: numbers measured from the standards' references, a text file a function.
//
//   tolerance R A                     real outputs: |got - want| <= A + R * largest |want|; otherwise equality
//   case LABEL
//   in  TYPE NAME COUNT v v v ...     a value or buffer before the call
//   out TYPE NAME COUNT v v v ...     a buffer after the call
//   status N                          the returned status, 0 where the line is missing
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace test {

struct GoldenCase {
  std::string label;
  int status = 0;
  double relative = 0, absolute = 0;
  std::map<std::string, std::vector<double>> in, out;  // a double holds every value of up to 32 bits exactly
};

std::vector<GoldenCase> readGolden(const std::string& path);

}  // namespace test
