// One call of an export with its buffers in guarded memory.
#pragma once

#include <memory>

#include "exports/export_table.h"
#include "support/golden.h"
#include "support/guarded.h"

namespace test {

class Call {
 public:
  // Contract run: every argument accepted, buffers filled with a reproducible pattern.
  Call(const Export& function, Place place);
  // Golden run: values of the case, sizes from the case's buffers.
  Call(const Export& function, const GoldenCase& golden, Place place);

  // Sets every real number that the function reads, elements and scalars; false when there is none.
  bool setReals(const std::function<double()>& next);

  // Has the function write argument `destination` where it reads `source`; false unless the one has the shape of the other.
  bool share(std::size_t source, std::size_t destination);

  Passed& operator[](std::size_t argument) { return passed_[argument]; }
  ZppStatus operator()() { return function_.call(passed_); }

  // Empty when nothing was written but what the roles allow; `writable` false: not even the outputs.
  std::string wrongWrites(bool writable) const;
  // Empty when all outputs that the case names are as it says.
  std::string difference(const GoldenCase& golden) const;
  // Contents of one buffer, of all
  std::vector<unsigned char> contents(std::size_t argument) const;
  std::vector<std::vector<unsigned char>> contents() const;

 private:
  struct Block {
    std::unique_ptr<Guarded> memory;
    std::vector<unsigned char> before;
  };
  void place(std::size_t argument, std::size_t elements, std::size_t history, Place where);
  double element(std::size_t argument, std::size_t index) const;
  void setElement(std::size_t argument, std::size_t index, double v);

  const Export& function_;
  std::vector<Passed> passed_;
  std::vector<Block> blocks_;
  std::pair<std::size_t, std::size_t> shared_ = {SIZE_MAX, SIZE_MAX};  // the first argument lies where the second does
};

}  // namespace test
