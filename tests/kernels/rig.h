// Compares every processor variant of a kernel with the portable kernel, and times both.
//
// A room's list of kernels (kernels.h) says what there is; a driver a kernel says how it is called:
//
//   DRIVE(ownAdd_16s, upTo(200)) { rig.run(rig.in<Zpp16s>(n), rig.in<Zpp16s>(n), rig.out<Zpp16s>(n), n); }
//
// The rig calls it for every size, alignment and kind of content. A kernel of the list without a driver does not link.
#pragma once

#include <cstdint>
#include <functional>
#include <limits>
#include <memory>
#include <string>
#include <tuple>
#include <type_traits>
#include <vector>

#include "core/variants.h"
#include "support/guarded.h"

namespace test {

// --- What is tested -----------------------------------------------------------------------------------------------------

struct Sizes {
  std::vector<int> tested, timed;
};
inline Sizes upTo(int largest, std::vector<int> timed = {40, 240}) {
  Sizes s;
  for (int n = 1; n <= largest; ++n) s.tested.push_back(n);
  s.timed = std::move(timed);
  return s;
}
inline Sizes only(std::vector<int> sizes) { return {sizes, sizes}; }

// Kinds of content: full-range noise first, then the pathological ones.
// constant: a level of its own for each buffer, so that sums come to lie on both sides of where they may saturate
// turning: the same, with the sign changing somewhere: sums that leave their range on the way and come back into it
enum class Content { noise, speech, lowBit, allMinimum, allMaximum, alternating, constant, turning, count };

class Random {
 public:
  explicit Random(std::uint64_t seed) : state_(seed) {}
  std::uint32_t next() {  // SplitMix64
    std::uint64_t z = state_ += 0x9e3779b97f4a7c15u;
    z = (z ^ (z >> 30)) * 0xbf58476d1ce4e5b9u;
    z = (z ^ (z >> 27)) * 0x94d049bb133111ebu;
    return static_cast<std::uint32_t>((z ^ (z >> 31)) >> 32);
  }
  std::int64_t between(std::int64_t lowest, std::int64_t highest) {
    return lowest + static_cast<std::int64_t>(next() % static_cast<std::uint64_t>(highest - lowest + 1));
  }

 private:
  std::uint64_t state_;
};

// --- Buffers and arguments of one call ------------------------------------------------------------------------------------

class RigBase {
 public:
  explicit RigBase(std::uint64_t seed) : random(seed) {}

  Random random;
  Content content = Content::noise;
  Place place;

  // Buffers of n elements with `history` more before the pointer; contents within lowest..highest.
  template <class T>
  const T* in(int n, T lowest = std::numeric_limits<T>::lowest(), T highest = std::numeric_limits<T>::max(), int history = 0) {
    return fill(claim<T>(n, history, false), n, history, lowest, highest);
  }
  template <class T>
  T* inOut(int n, T lowest = std::numeric_limits<T>::lowest(), T highest = std::numeric_limits<T>::max(), int history = 0) {
    return fill(claim<T>(n, history, true), n, history, lowest, highest);
  }
  template <class T>
  T* out(int n) {
    return claim<T>(n, 0, true);
  }
  template <class T>
  const T* history(int n, int before) {
    return in<T>(n, std::numeric_limits<T>::lowest(), std::numeric_limits<T>::max(), before);
  }
  // A source whose content the driver makes itself
  template <class T, class Make>
  const T* made(int n, Make make) {
    T* p = claim<T>(n, 0, false);
    make(p);
    return p;
  }
  template <class T = int>
  T scalar(std::int64_t lowest, std::int64_t highest) {
    return static_cast<T>(random.between(lowest, highest));
  }

  void beginCall() { used_ = 0; }

 protected:
  struct Area {
    std::unique_ptr<Guarded> memory = std::make_unique<Guarded>(kCapacity);
    bool written = false;
    std::vector<unsigned char> before;
  };
  static constexpr std::size_t kCapacity = 64 * 1024;
  std::vector<Area> areas_;
  std::size_t used_ = 0;

 private:
  template <class T>
  T* claim(int n, int history, bool written) {
    if (used_ == areas_.size()) areas_.emplace_back();
    Area& area = areas_[used_++];
    area.written = written;
    auto* data = area.memory->claim(static_cast<std::size_t>(n + history) * sizeof(T), place, sizeof(T));
    std::memset(data, 0x5A, area.memory->size());
    place = place.next(2 * (static_cast<unsigned>(used_) % 3 + 1));
    return reinterpret_cast<T*>(data) + history;
  }
  template <class T>
  T* fill(T* p, int n, int history, T lowest, T highest) {
    double level = 0;
    const bool isLevel = content == Content::constant || content == Content::turning;
    const auto part = isLevel ? random.between(1, 64) : 0;
    bool below = isLevel && random.between(0, 1) == 0;
    const auto turn = content == Content::turning ? random.between(-history, n) : n;
    for (int i = -history; i < n; ++i) {
      if constexpr (std::is_floating_point_v<T>) {
        p[i] =
            static_cast<T>(static_cast<double>(random.between(-1000000, 1000000)) * (content == Content::lowBit ? 1e-6 : 1e-2));
        continue;
      } else {
        const auto low = static_cast<std::int64_t>(lowest), high = static_cast<std::int64_t>(highest);
        std::int64_t v = 0;
        switch (content) {
          case Content::noise:
            v = random.between(low, high);
            break;
          case Content::speech:
            level = level * 0.9 + static_cast<double>(random.between(-400, 400));
            v = static_cast<std::int64_t>(level);
            break;
          case Content::lowBit:
            v = random.between(-1, 1);
            break;
          case Content::allMinimum:
            v = low;
            break;
          case Content::allMaximum:
            v = high;
            break;
          case Content::constant:
          case Content::turning:
            if (i == turn) below = !below;
            v = (below ? low : high) * part / 64;
            break;
          default:
            v = i % 2 == 0 ? low : high;
            break;
        }
        p[i] = static_cast<T>(v < low ? low : v > high ? high : v);
      }
    }
    return p;
  }
};

// --- One kernel with its variants -------------------------------------------------------------------------------------------

template <class Kernel>
class Rig : public RigBase {
 public:
  using Signature = typename Kernel::Signature;
  using RigBase::RigBase;

  // Compares the variant under test with the portable kernel on these arguments; while timing, keeps them.
  template <class... Arguments>
  void run(Arguments... arguments) {
    if (keep) {
      calls.push_back([arguments...](Signature* f) { f(arguments...); });
      return;
    }
    for (std::size_t i = 0; i < used_; ++i) areas_[i].before.assign(data(i), data(i) + size(i));
    const auto expected = resultOf(Kernel::portable, arguments...);
    std::vector<std::vector<unsigned char>> wanted(used_);
    for (std::size_t i = 0; i < used_; ++i) {
      wanted[i].assign(data(i), data(i) + size(i));
      check(i, "the portable kernel");
      std::memcpy(data(i), areas_[i].before.data(), size(i));
    }
    const auto got = resultOf(variant, arguments...);
    if (got != expected) failure = "another result";
    for (std::size_t i = 0; i < used_; ++i) {
      if (std::memcmp(data(i), wanted[i].data(), size(i)) != 0) failure = "another content of buffer " + std::to_string(i + 1);
      check(i, "the variant");
    }
  }

  Signature* variant = nullptr;
  std::string failure;
  bool keep = false;
  std::vector<std::function<void(Signature*)>> calls;

 private:
  unsigned char* data(std::size_t i) { return areas_[i].memory->data(); }
  std::size_t size(std::size_t i) { return areas_[i].memory->size(); }
  void check(std::size_t i, const char* who) {
    if (!areas_[i].memory->canariesIntact()) failure = std::string(who) + " wrote outside buffer " + std::to_string(i + 1);
    if (!areas_[i].written && std::memcmp(data(i), areas_[i].before.data(), size(i)) != 0)
      failure = std::string(who) + " changed its source, buffer " + std::to_string(i + 1);
  }
  template <class... Arguments>
  static auto resultOf(Signature* f, Arguments... arguments) {
    if constexpr (std::is_void_v<decltype(f(arguments...))>) {
      f(arguments...);
      return 0;
    } else {
      return f(arguments...);
    }
  }
};

template <class Kernel>
void drive(Rig<Kernel>& rig, int n);
template <class Kernel>
Sizes sizesOf();

#define DRIVE(name, ...)           \
  template <>                      \
  Sizes sizesOf<name##_kernel>() { \
    return __VA_ARGS__;            \
  }                                \
  template <>                      \
  void drive<name##_kernel>([[maybe_unused]] Rig<name##_kernel> & rig, [[maybe_unused]] int n)

// --- The list of kernels as types --------------------------------------------------------------------------------------------

#define ZPP_KERNEL_TYPE(name, variants, ...)            \
  struct name##_kernel {                                \
    static constexpr const char* text = #name;          \
    using Signature = name##_signature;                 \
    static constexpr Signature* portable = name##_PX;   \
    template <class Use>                                \
    static void eachVariant([[maybe_unused]] Use use) { \
      ZPP_USE_##variants(name)                          \
    }                                                   \
  };                                                    \
  template <>                                           \
  Sizes sizesOf<name##_kernel>();                       \
  template <>                                           \
  void drive<name##_kernel>(Rig<name##_kernel> & rig, int n);

#define ZPP_USE_ONE(name, level, suffix) \
  if constexpr (zpp::buildLevel >= zpp::Level::level) use(#level, name##_##suffix);
#define ZPP_USE_A6(name) ZPP_USE_ONE(name, a6, A6)
#define ZPP_USE_W7(name) ZPP_USE_ONE(name, w7, W7)
#define ZPP_USE_T7(name) ZPP_USE_ONE(name, t7, T7)
#define ZPP_USE_V3(name) ZPP_USE_ONE(name, v3, V3)
#define ZPP_USE_A6_W7(name) ZPP_USE_A6(name) ZPP_USE_W7(name)
#define ZPP_USE_W7_T7(name) ZPP_USE_W7(name) ZPP_USE_T7(name)
#define ZPP_USE_A6_V3(name) ZPP_USE_A6(name) ZPP_USE_V3(name)
#define ZPP_USE_W7_V3(name) ZPP_USE_W7(name) ZPP_USE_V3(name)

// --- The program's list ----------------------------------------------------------------------------------------------

struct Options {
  std::uint64_t seed = 1;
  bool bench = false, count = false;  // count: with bench, instructions instead of time
  std::string filter;
};

struct Tally {
  int passed = 0, failed = 0;
};

void checkVariants(const std::string& kernel, const Options& options, Tally& tally,
                   const std::function<std::string(const std::string& variant, Content, Place, int size)>& attempt,
                   const std::vector<std::string>& variants, const Sizes& sizes);
void timeVariants(const std::string& kernel, int size, const std::vector<std::string>& names,
                  const std::vector<std::function<void(int)>>& repeat);
// Of the last variant, for callgrind: a dump of the counts of sixteen calls
void countVariants(const std::string& kernel, int size, const std::vector<std::function<void(int)>>& repeat);

template <class Kernel>
void runKernel(const Options& options, Tally& tally) {
  const std::string name = Kernel::text;
  if (name.find(options.filter) == std::string::npos) return;
  std::vector<std::string> names;
  std::vector<typename Kernel::Signature*> functions;
  Kernel::eachVariant(
      [&](const char* level, typename Kernel::Signature* f) { names.push_back(level), functions.push_back(f); });
  if (!options.bench) {
    Rig<Kernel> rig(options.seed);
    checkVariants(
        name, options, tally,
        [&](const std::string& variant, Content content, Place place, int size) {
          for (std::size_t v = 0; v < names.size(); ++v)
            if (names[v] == variant) rig.variant = functions[v];
          rig.content = content;
          rig.place = place;
          rig.failure.clear();
          rig.beginCall();
          drive<Kernel>(rig, size);
          return rig.failure;
        },
        names, sizesOf<Kernel>());
    return;
  }
  if (names.empty()) return;
  names.insert(names.begin(), "px");
  functions.insert(functions.begin(), Kernel::portable);
  for (const int size : sizesOf<Kernel>().timed) {
    // Sixteen sets of arguments, so that the timed loop sees changing inputs.
    std::vector<std::unique_ptr<Rig<Kernel>>> rigs;
    for (unsigned set = 0; set < 16; ++set) {
      rigs.push_back(std::make_unique<Rig<Kernel>>(options.seed + set));
      rigs.back()->keep = true;
      rigs.back()->content = Content::speech;
      rigs.back()->place = {Place::Kind::middle, 2 * (set % 8)};
      rigs.back()->beginCall();
      drive<Kernel>(*rigs.back(), size);
    }
    std::vector<std::function<void(int)>> repeat;
    for (auto* f : functions)
      repeat.push_back([&rigs, f](int rounds) {
        for (int r = 0; r < rounds; ++r)
          for (auto& rig : rigs)
            for (auto& call : rig->calls) call(f);
      });
    if (options.count)
      countVariants(name, size, repeat);
    else
      timeVariants(name, size, names, repeat);
  }
}

#define ZPP_RUN_KERNEL(name, variants, ...) runKernel<name##_kernel>(options, tally);

// One a room, in <room>_drivers.cpp
void runCoreKernels(const Options& options, Tally& tally);
void runLpcKernels(const Options& options, Tally& tally);
void runG729Kernels(const Options& options, Tally& tally);
void runG723Kernels(const Options& options, Tally& tally);
void runAmrKernels(const Options& options, Tally& tally);
void runG726Kernels(const Options& options, Tally& tally);
void runG7221Kernels(const Options& options, Tally& tally);
void runAmrWbKernels(const Options& options, Tally& tally);
void runG728Kernels(const Options& options, Tally& tally);
void runGsmFrKernels(const Options& options, Tally& tally);

}  // namespace test
