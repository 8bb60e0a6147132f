// Every export of libzppsc on arbitrary legal arguments, in buffers that reach exactly as far as its comment says: the build's
// kernels and the portable ones, which are in a library of their own, give the same status and the same bits; an error writes
// nothing. (Without that library the build's kernels are called twice.) States are what their functions make of them, from the
// one that starts them on.
#include <dlfcn.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "exports/export_table.h"
#include "fuzz.h"

using fuzz::expect;
using test::Argument;
using test::Element;
using test::Export;

namespace {

using Number = std::int64_t;

// The scalars of a call by their names; few, and no map, whose library code the memory sanitizer does not know
class Values {
 public:
  void set(const std::string& name, Number value) {
    std::erase_if(values_, [&](const auto& known) { return known.first == name; });
    values_.emplace_back(name, value);
  }
  Number operator[](const char* name) const {
    const auto found = std::ranges::find(values_, name, &std::pair<std::string, Number>::first);
    expect(found != values_.end(), name);
    return found->second;
  }
  // Those of the call that started a state, as state.<name>
  void addAsState(const Values& started) {
    for (const auto& [name, value] : started.values_) set("state." + name, value);
  }

 private:
  std::vector<std::pair<std::string, Number>> values_;
};

Number floorDiv(Number a, Number b) { return a / b - (a % b != 0 && (a < 0) != (b < 0) ? 1 : 0); }

// How far a buffer reaches; of a state its kind, and its bytes where it is started
struct Extent {
  const char* buffer;
  Number (*before)(const Values&);
  Number (*after)(const Values&);
  std::string kind;
  bool starts;
};

struct Row {
  const char* name;
  Number (*condition)(const Values&);  // of what the function does not check and yet relies on
  std::vector<Extent> extents;         // of its pointers, in their order
  const Export* function = nullptr;
  const void* portable = nullptr;
};

std::vector<Row> readRows() {
  static const std::vector<Export> table = test::allExports();
  std::vector<Row> rows = {
#include "extents.inc"
  };
#ifdef PORTABLE_LIBRARY
  void* const library = dlopen(PORTABLE_LIBRARY, RTLD_NOW | RTLD_LOCAL);
  expect(library != nullptr, "the portable library is there");
#endif
  for (Row& row : rows) {
    const auto found = std::find_if(table.begin(), table.end(), [&](const Export& e) { return e.name == row.name; });
    expect(found != table.end(), row.name);
    row.function = &*found;
#ifdef PORTABLE_LIBRARY
    row.portable = dlsym(library, row.name);
    expect(row.portable != nullptr && row.portable != found->address, row.name);
#else
    row.portable = found->address;
#endif
    const auto buffers = std::count_if(found->arguments.begin(), found->arguments.end(), std::mem_fn(&Argument::isBuffer));
    expect(row.extents.size() == static_cast<std::size_t>(buffers), row.name);
  }
  return rows;
}

const std::vector<Row>& rows() {
  static const std::vector<Row> all = readRows();
  return all;
}

// The same bytes for each of the two libraries
struct Pair {
  fuzz::Block level, portable;
  Pair(std::size_t size, std::size_t shift) : level(size, shift), portable(size, shift) {}
  void mirror() const {
    if (level.size() != 0) std::memcpy(portable.data(), level.data(), level.size());
  }
};

constexpr Number kMostElements = 2000;

// A generator for content of which the input gives the seed alone
class Noise {
 public:
  explicit Noise(std::uint32_t seed) : state_(seed) {}
  std::uint32_t operator()() {
    state_ = state_ * 1664525u + 1013904223u;
    return state_ ^ state_ >> 15;
  }

 private:
  std::uint32_t state_;
};

class Drawing {
 public:
  explicit Drawing(FuzzedDataProvider& data) : data_(data) {}

  Number scalar(const Argument& a, Number accepted, bool plain) {
    const int kind = plain ? 0 : data_.ConsumeIntegralInRange(0, 9);
    if (kind < 4) return accepted;
    if (kind == 4) return accepted + data_.ConsumeIntegralInRange(-3, 3);
    if (kind < 8) return data_.ConsumeIntegralInRange<Number>(a.name == "rate" ? 0 : -2, a.name == "rate" ? 27 : 300);
    if (kind == 8) return data_.ConsumeIntegral<std::int16_t>();
    return data_.ConsumeIntegral<std::int32_t>();
  }

  double real(double accepted) { return data_.ConsumeBool() ? accepted : data_.ConsumeIntegralInRange(-40000, 40000) / 4096.0; }

  void fill(unsigned char* bytes, std::size_t size, Element element) {
    const std::size_t width = sizeOf(element), count = size / width;
    const int kind = data_.ConsumeIntegralInRange(0, 7);
    if (kind == 0) {  // as it comes; zeros behind
      const auto given = data_.ConsumeBytes<unsigned char>(element == Element::f32 ? 0 : size);
      std::memset(bytes, 0, size);
      if (!given.empty()) std::memcpy(bytes, given.data(), given.size());
      return;
    }
    Noise noise(data_.ConsumeIntegral<std::uint16_t>());
    const int bits = static_cast<int>(8 * width), shift = data_.ConsumeIntegralInRange(0, bits - 1);
    const double largest = element == Element::f32 ? std::ldexp(1.0, 15 - shift) : std::ldexp(1.0, bits - 1 - shift);
    const double decay = 1 - data_.ConsumeIntegralInRange(1, 255) / 256.0;
    const double constants[] = {0, 1, -1, largest, -largest, largest / 2};
    const double constant = constants[data_.ConsumeIntegralInRange(0, 5)];
    double size0 = largest, step = 0;
    for (std::size_t i = 0; i < count; ++i) {
      const double random = noise() / 2147483648.0 - 1;  // -1 to 1
      step += largest / static_cast<double>(count) * (random + 1);
      const double value = kind == 1   ? constant
                           : kind == 2 ? size0 * (i == 0 ? 1 : random)                    // an impulse response
                           : kind == 3 ? size0                                            // an autocorrelation
                           : kind == 4 ? step                                             // line spectral frequencies
                           : kind == 5 ? std::floor((random + 1) / 2 * (1 << shift % 9))  // indices
                           : kind == 6 ? (random < 0 ? -largest : largest)                // clipped
                                       : random * largest;
      size0 *= decay;
      put(bytes + i * width, element, value);
    }
  }

 private:
  static void put(unsigned char* at, Element element, double value) {
    asType(element, [at, value](auto stored) {
      using T = decltype(stored);
      stored = std::is_floating_point_v<T>
                   ? static_cast<T>(value)
                   : static_cast<T>(std::clamp(value, static_cast<double>(std::numeric_limits<T>::min()),
                                               static_cast<double>(std::numeric_limits<T>::max())));
      std::memcpy(at, &stored, sizeof stored);
    });
  }

  FuzzedDataProvider& data_;
};

// A state as it goes from call to call
struct State {
  std::string kind;
  Pair memory;
  Values started;
};

void complain(const Row& row, const std::string& what) { expect(false, (std::string(row.name) + ": " + what).c_str()); }

bool finite(const fuzz::Block& block) {
  for (std::size_t i = 0; i + sizeof(Zpp32f) <= block.size(); i += sizeof(Zpp32f)) {
    Zpp32f value;
    std::memcpy(&value, block.data() + i, sizeof value);
    if (!std::isfinite(value)) return false;
  }
  return true;
}

// One call of both libraries. Null when a state could not be started, or the arguments cannot be had.
bool callBoth(const Row& row, FuzzedDataProvider& data, bool plain, std::unique_ptr<State>& state) {
  const std::vector<Argument>& arguments = row.function->arguments;
  Drawing draw(data);
  std::vector<test::Passed> level(arguments.size()), portable(arguments.size());
  Values values;
  if (state) values.addAsState(state->started);
  for (const bool fallBack : {false, true}) {  // what the function relies on holds for the accepted arguments
    for (std::size_t i = 0; i < arguments.size(); ++i) {
      const Argument& a = arguments[i];
      if (a.isBuffer()) continue;
      if (a.real) {
        level[i].number = draw.real(a.value);
        continue;
      }
      auto accepted = static_cast<Number>(a.value);
      for (const Argument& other : arguments)
        if (!a.lengthOf.empty() && other.name == a.lengthOf) accepted = static_cast<Number>(other.count / other.perItem);
      const Number value = std::clamp<Number>(draw.scalar(a, accepted, plain || fallBack), INT32_MIN, INT32_MAX);
      level[i].number = static_cast<double>(a.received(value));
      values.set(a.name, static_cast<Number>(level[i].number));
    }
    if (row.condition(values) != 0) break;
  }

  std::vector<std::unique_ptr<Pair>> buffers(arguments.size());
  unsigned char unused[1] = {};
  const Extent* extent = row.extents.data();
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    portable[i] = level[i];
    const Argument& a = arguments[i];
    if (!a.isBuffer()) continue;
    const Extent& reach = *extent++;
    const Number before = std::max<Number>(0, reach.before(values)), after = std::max<Number>(0, reach.after(values));
    if (!reach.kind.empty()) {
      if (reach.starts) {
        if (after > 4096) return false;
        state = std::make_unique<State>(
            State{reach.kind, Pair(static_cast<std::size_t>(after), data.ConsumeIntegralInRange(0, 3)), values});
      }
      level[i].pointer = state->memory.level.data();
      portable[i].pointer = state->memory.portable.data();
      continue;
    }
    if (a.optional && data.ConsumeIntegralInRange(0, 4) == 0) continue;  // null
    if (a.element == Element::u8 && after == 0) {                        // work memory that nobody touches
      level[i].pointer = portable[i].pointer = unused;
      continue;
    }
    if (before + after > kMostElements) return false;
    const std::size_t width = sizeOf(a.element), item = width * a.perItem;
    const std::size_t size = static_cast<std::size_t>(before + std::max<Number>(1, after)) * item;
    buffers[i] = std::make_unique<Pair>(size, width * data.ConsumeIntegralInRange<std::size_t>(0, 7));
    unsigned char* const from = buffers[i]->level.data();
    unsigned char* const at = from + static_cast<std::size_t>(before) * item;
    if (a.role != Argument::Role::out) {
      draw.fill(from, size, a.element);
      if (a.prepare && before == static_cast<Number>(a.history) &&
          after * static_cast<Number>(a.perItem) >= static_cast<Number>(a.count) && data.ConsumeBool())
        a.prepare(at);
    }
    buffers[i]->mirror();
    level[i].pointer = at;
    portable[i].pointer = buffers[i]->portable.data() + static_cast<std::size_t>(before) * item;
  }

  std::vector<std::vector<unsigned char>> contents(arguments.size());
  for (std::size_t i = 0; i < arguments.size(); ++i)
    if (buffers[i]) contents[i] = buffers[i]->level.copy();
  const auto stateBefore = state ? state->memory.level.copy() : std::vector<unsigned char>{};

  const ZppStatus status = row.function->invoke(row.function->address, level);
  const ZppStatus other = row.function->invoke(row.portable, portable);

  if (status != other) complain(row, "status " + std::to_string(status) + ", portable " + std::to_string(other));
  bool comparable = true;
  for (std::size_t i = 0; i < arguments.size(); ++i)
    if (buffers[i] && arguments[i].element == Element::f32 && !finite(buffers[i]->level)) comparable = false;
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    if (!buffers[i]) continue;
    const Argument& a = arguments[i];
    const Pair& b = *buffers[i];
    // The one function that meets bad values on its way has written what comes before them.
    const bool partly =
        status == zppStsOutOfDomain && row.name == std::string_view("zppsLSFToLSP_G729_16s") && a.role == Argument::Role::out;
    if (((status < 0 && !partly) || a.role == Argument::Role::in) && b.level.copy() != contents[i])
      complain(row, "changes " + a.name);
    if (comparable && b.level.copy() != b.portable.copy()) complain(row, a.name + " differs from the portable kernel's");
  }
  if (state && status < 0 && state->memory.level.copy() != stateBefore) complain(row, "an error changes the state");
  if (state && comparable && state->memory.level.copy() != state->memory.portable.copy()) complain(row, "the states differ");
  return status >= 0 && comparable;
}

const std::string& kindOf(const Row& row, bool* starts = nullptr) {
  static const std::string none;
  for (const Extent& e : row.extents)
    if (!e.kind.empty()) {
      if (starts != nullptr) *starts = e.starts;
      return e.kind;
    }
  return none;
}

const Row& choose(FuzzedDataProvider& data, const std::function<bool(const Row&)>& wanted) {
  std::vector<const Row*> choices;
  for (const Row& row : rows())
    if (wanted(row)) choices.push_back(&row);
  return *choices[data.ConsumeIntegralInRange<std::size_t>(0, choices.size() - 1)];
}

}  // namespace

// Ranges of operators are for the codecs, vectors and tests to show. Arbitrary arguments lie outside of some, a signal of
// energy 0 for one; results must be defined there, and equal.
extern "C" int LLVMFuzzerInitialize(int*, char***) { return setenv("ZPPSC_OUT_OF_RANGE", "1", 1); }

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  FuzzedDataProvider data(bytes, size);
  const Row& row = choose(data, [](const Row&) { return true; });
  std::unique_ptr<State> state;
  bool starts = false;
  const std::string& kind = kindOf(row, &starts);
  if (!kind.empty() && !starts) {
    const auto isOf = [&](bool first) {
      return [&kind, first](const Row& one) {
        bool isFirst = false;
        return kindOf(one, &isFirst) == kind && isFirst == first;
      };
    };
    if (!callBoth(choose(data, isOf(true)), data, data.ConsumeBool(), state)) return 0;
    for (int calls = data.ConsumeIntegralInRange(0, 4); calls > 0; --calls)
      callBoth(choose(data, isOf(false)), data, data.ConsumeBool(), state);
  }
  callBoth(row, data, data.ConsumeBool(), state);
  return 0;
}
