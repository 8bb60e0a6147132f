#include "exports/call.h"

#include <algorithm>
#include <cmath>

namespace test {

double Call::element(std::size_t argument, std::size_t index) const {
  const Element e = function_.arguments[argument].element;
  const unsigned char* const p = blocks_[argument].memory->data() + index * sizeOf(e);
  return asType(e, [p](auto v) {
    std::memcpy(&v, p, sizeof v);
    return static_cast<double>(v);
  });
}

void Call::setElement(std::size_t argument, std::size_t index, double v) {
  const Element e = function_.arguments[argument].element;
  unsigned char* const p = blocks_[argument].memory->data() + index * sizeOf(e);
  asType(e, [p, v](auto stored) {
    using T = decltype(stored);
    // By way of 64 bits: a negative value in an unsigned element is its two's complement on every machine.
    stored = std::is_floating_point_v<T> ? static_cast<T>(v) : static_cast<T>(static_cast<std::int64_t>(v));
    std::memcpy(p, &stored, sizeof stored);
  });
}

void Call::place(std::size_t argument, std::size_t elements, std::size_t history, Place where) {
  const std::size_t size = sizeOf(function_.arguments[argument].element);
  Block& block = blocks_[argument];
  block.memory = std::make_unique<Guarded>(elements * size);
  unsigned char* data = block.memory->claim(elements * size, where, size);
  std::memset(data, 0x5A, elements * size);
  passed_[argument].pointer = data + history * size;
}

Call::Call(const Export& function, Place where)
    : function_(function), passed_(function.arguments.size()), blocks_(function.arguments.size()) {
  unsigned noise = 12345;
  for (std::size_t i = 0; i < passed_.size(); ++i, where = where.next()) {
    const Argument& a = function.arguments[i];
    if (!a.isBuffer()) {
      passed_[i].number = a.value;
      for (const Argument& other : function.arguments)
        if (!a.lengthOf.empty() && other.name == a.lengthOf)
          passed_[i].number = static_cast<double>(other.count / other.perItem);
      continue;
    }
    const std::size_t elements = a.history + a.count;
    place(i, elements, a.history, where);
    if (a.role != Argument::Role::out)
      for (std::size_t k = 0; k < elements; ++k) {
        noise = noise * 1664525u + 1013904223u;
        setElement(i, k, a.element == Element::u8 ? static_cast<int>(noise >> 24) : static_cast<int>(noise >> 22) - 512);
      }
    if (a.prepare) a.prepare(passed_[i].pointer);
  }
  for (Block& b : blocks_)
    if (b.memory) b.before.assign(b.memory->data(), b.memory->data() + b.memory->size());
}

Call::Call(const Export& function, const GoldenCase& golden, Place where)
    : function_(function), passed_(function.arguments.size()), blocks_(function.arguments.size()) {
  const auto scalar = [&](const std::string& name, double otherwise) {
    const auto found = golden.in.find(name);
    return found == golden.in.end() ? otherwise : found->second.at(0);
  };
  const auto elementsOf = [&](const Argument& a) {
    const auto given = golden.in.find(a.name);
    std::size_t elements = given == golden.in.end() ? 0 : given->second.size();
    const auto atLeast = [&](const std::string& name, std::size_t from) {
      if (const auto expected = golden.out.find(name); expected != golden.out.end())
        elements = std::max(elements, from + expected->second.size());
    };
    atLeast(a.name, 0);
    for (const Part& part : a.parts) atLeast(part.name, part.from);
    return elements;
  };
  const auto historyOf = [&](const Argument& a) {
    return a.historyIs.empty() ? a.history : static_cast<std::size_t>(scalar(a.historyIs, 0));
  };
  for (std::size_t i = 0; i < passed_.size(); ++i, where = where.next()) {
    const Argument& a = function.arguments[i];
    if (!a.isBuffer()) {
      double otherwise = a.value;
      for (const Argument& other : function.arguments)
        if (!a.lengthOf.empty() && other.name == a.lengthOf)
          otherwise = static_cast<double>((elementsOf(other) - historyOf(other)) / other.perItem);
      passed_[i].number = scalar(a.name, otherwise);
      continue;
    }
    const auto given = golden.in.find(a.name);
    if (a.optional && given == golden.in.end() && !golden.out.count(a.name)) continue;  // null
    std::size_t elements = elementsOf(a);
    std::size_t history = historyOf(a);
    if (elements == 0) elements = history + a.count;
    if (!a.historyFrom.empty()) history = elements - static_cast<std::size_t>(scalar(a.historyFrom, 0));
    place(i, elements, history, where);
    if (given != golden.in.end())
      for (std::size_t k = 0; k < given->second.size(); ++k) setElement(i, k, given->second[k]);
  }
  for (Block& b : blocks_)
    if (b.memory) b.before.assign(b.memory->data(), b.memory->data() + b.memory->size());
}

bool Call::setReals(const std::function<double()>& next) {
  bool any = false;
  for (std::size_t i = 0; i < passed_.size(); ++i) {
    const Argument& a = function_.arguments[i];
    if (a.real) passed_[i].number = next(), any = true;
    if (!a.isBuffer() || a.role == Argument::Role::out || a.element != Element::f32) continue;
    for (std::size_t k = 0; k < blocks_[i].memory->size() / sizeOf(a.element); ++k) setElement(i, k, next());
    blocks_[i].before.assign(blocks_[i].memory->data(), blocks_[i].memory->data() + blocks_[i].memory->size());
    any = true;
  }
  return any;
}

bool Call::share(std::size_t source, std::size_t destination) {
  const Block &src = blocks_[source], &dst = blocks_[destination];
  const auto before = [this](std::size_t i) {
    return static_cast<unsigned char*>(passed_[i].pointer) - blocks_[i].memory->data();
  };
  if (!src.memory || !dst.memory || src.memory->size() != dst.memory->size() || before(source) != before(destination))
    return false;
  passed_[destination].pointer = passed_[source].pointer;
  shared_ = {destination, source};
  return true;
}

std::string Call::wrongWrites(bool writable) const {
  for (std::size_t i = 0; i < blocks_.size(); ++i) {
    const Block& b = blocks_[i];
    if (!b.memory) continue;
    const std::string& name = function_.arguments[i].name;
    if (!b.memory->canariesIntact()) return "wrote outside " + name;
    if (writable && function_.arguments[i].role != Argument::Role::in) continue;
    if (!std::equal(b.before.begin(), b.before.end(), b.memory->data())) return "changed " + name;
  }
  return {};
}

std::string Call::difference(const GoldenCase& golden) const {
  for (const auto& [name, want] : golden.out) {
    std::size_t i = 0, from = 0;
    const auto isNamed = [&, &wanted = name](const Argument& a) {
      from = 0;
      if (a.name == wanted) return true;
      for (const Part& part : a.parts)
        if (part.name == wanted) return from = part.from, true;
      return false;
    };
    while (i < passed_.size() && (!blocks_[i].memory || !isNamed(function_.arguments[i]))) ++i;
    if (i == passed_.size()) return "no argument " + name;
    double largest = 0;
    for (const double w : want) largest = std::max(largest, std::fabs(w));
    const double allowed = golden.absolute + golden.relative * largest;
    for (std::size_t k = 0; k < want.size(); ++k) {
      const double got = element(i, from + k);
      const double expected =
          function_.arguments[i].element == Element::f32 ? static_cast<double>(static_cast<float>(want[k])) : want[k];
      if (!(std::fabs(got - expected) <= allowed))
        return name + "[" + std::to_string(k) + "] is " + std::to_string(got) + ", not " + std::to_string(want[k]);
    }
  }
  return {};
}

std::vector<unsigned char> Call::contents(std::size_t argument) const {
  Guarded& memory = *blocks_[argument == shared_.first ? shared_.second : argument].memory;
  return {memory.data(), memory.data() + memory.size()};
}

std::vector<std::vector<unsigned char>> Call::contents() const {
  std::vector<std::vector<unsigned char>> all;
  for (const Block& b : blocks_)
    if (b.memory) all.emplace_back(b.memory->data(), b.memory->data() + b.memory->size());
  return all;
}

}  // namespace test
