// The table of all exports: one row a function, from which the contract tests and the golden-vector tests are derived.
//
//   row(FUNCTION(zppsMul_NR_16s_Sfs), in("src1", 16), in("src2", 16), out("dst", 16), length("src1"), scale("scaleFactor", 4,
//   {-1}))
//
// A row describes each argument: its name (as the golden vectors call it), the buffer's size in the contract run, values that
// must be refused, and with which status. Element types come from the prototype.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <type_traits>
#include <vector>

#include "zppsc.h"

namespace test {

enum class Element { u8, s16, u16, s32, u32, f32 };

constexpr std::size_t sizeOf(Element e) { return e == Element::u8 ? 1 : e == Element::s16 || e == Element::u16 ? 2 : 4; }

// f(a value of the element's type)
template <class F>
auto asType(Element e, F f) {
  switch (e) {
    case Element::u8:
      return f(Zpp8u{});
    case Element::s16:
      return f(Zpp16s{});
    case Element::u16:
      return f(Zpp16u{});
    case Element::s32:
      return f(Zpp32s{});
    case Element::u32:
      return f(Zpp32u{});
    default:
      return f(Zpp32f{});
  }
}

struct Refused {
  std::int64_t value;
  ZppStatus status;
  int rank;  // position in the order of checks: 1 lengths, 2 enumerated values, 3 scales and shifts, 4 coded parameters
};

// A part of a buffer that the golden vectors name by itself
struct Part {
  std::string name;
  std::size_t from;  // its first element
};

struct Argument {
  enum class Role { in, out, inOut, scalar } role = Role::scalar;
  std::string name;
  std::size_t count = 0;                             // buffers: elements from the pointer on, in the contract run
  std::size_t history = 0;                           // buffers: elements before the pointer
  std::string historyFrom;                           // golden runs: history = elements of the buffer - value of this scalar
  std::string historyIs;                             // golden runs: history = value of this scalar
  std::vector<Part> parts;                           // golden runs: expected outputs by other names
  bool optional = false;                             // buffers: null is allowed
  std::function<void(void*)> prepare;                // buffers: content for the contract run, after the default fill
  double value = 0;                                  // scalars: accepted value
  std::string lengthOf;                              // scalars: golden runs take the size of this buffer
  std::vector<Refused> refused;                      // scalars
  Element element = Element::u8;                     // from the prototype; bytes for state blocks
  bool real = false;                                 // scalars: of a floating-point type
  std::int64_t (*received)(std::int64_t) = nullptr;  // integer scalars: what the function sees of a value
  bool untyped = false;                              // the prototype has void*, and the golden vectors give `element`s
  std::size_t perItem = 1;  // elements of the golden vectors in one element of the prototype (2 for complex)

  Argument before(std::size_t elements) const {
    return with([&](Argument& a) { a.history = elements; });
  }
  Argument before(std::size_t elements, std::string totalMinus) const {
    return with([&](Argument& a) { a.history = elements, a.historyFrom = std::move(totalMinus); });
  }
  // A delay line: the scalar tells how many elements lie before the pointer.
  Argument after(std::string delay, std::size_t elements) const {
    return with([&](Argument& a) { a.history = elements, a.historyIs = std::move(delay); });
  }
  Argument part(std::string partName, std::size_t from) const {
    return with([&](Argument& a) { a.parts.push_back({std::move(partName), from}); });
  }
  // The elements of a state block (void*) as the golden vectors give them
  Argument of(Element e) const {
    return with([&](Argument& a) { a.element = e, a.untyped = true; });
  }
  Argument orNull() const {
    return with([](Argument& a) { a.optional = true; });
  }
  Argument preparedBy(std::function<void(void*)> fill) const {
    return with([&](Argument& a) { a.prepare = std::move(fill); });
  }
  // Refuses more values, e.g. at another position in the order of checks.
  Argument refusing(std::vector<std::int64_t> values, ZppStatus status, int rank) const {
    return with([&](Argument& a) {
      for (const auto v : values) a.refused.push_back({v, status, rank});
    });
  }
  bool isBuffer() const { return role != Role::scalar; }

 private:
  template <class Change>
  Argument with(Change change) const {
    Argument copy = *this;
    change(copy);
    return copy;
  }
};

inline Argument buffer(Argument::Role role, std::string name, std::size_t count) {
  Argument a;
  a.role = role;
  a.name = std::move(name);
  a.count = count;
  return a;
}
inline Argument in(std::string name, std::size_t count) { return buffer(Argument::Role::in, std::move(name), count); }
inline Argument out(std::string name, std::size_t count) { return buffer(Argument::Role::out, std::move(name), count); }
inline Argument inOut(std::string name, std::size_t count) { return buffer(Argument::Role::inOut, std::move(name), count); }
inline Argument result(std::string name) { return out(std::move(name), 1); }

inline Argument value(std::string name, double accepted) {
  Argument a;
  a.name = std::move(name);
  a.value = accepted;
  return a;
}
// A length of the named buffer: 0 and below are refused.
inline Argument length(std::string ofBuffer, double accepted = 0) {
  Argument a = value("len", accepted);
  a.lengthOf = std::move(ofBuffer);
  return a.refusing({0, -1, INT32_MIN}, zppStsBadSize, 1);
}
// A length that the golden vectors give by name.
inline Argument count(std::string name, double accepted) {
  return value(std::move(name), accepted).refusing({0, -1, INT32_MIN}, zppStsBadSize, 1);
}
inline Argument choice(std::string name, double accepted, std::vector<std::int64_t> refused) {
  return value(std::move(name), accepted).refusing(std::move(refused), zppStsOutOfRange, 2);
}
inline Argument scale(std::string name, double accepted, std::vector<std::int64_t> refused = {}) {
  return value(std::move(name), accepted).refusing(std::move(refused), zppStsBadScale, 3);
}
inline Argument shift(std::string name, double accepted) {
  return value(std::move(name), accepted).refusing({-1, INT32_MIN}, zppStsShiftErr, 3);
}
inline Argument coded(std::string name, double accepted, std::vector<std::int64_t> refused) {
  return value(std::move(name), accepted).refusing(std::move(refused), zppStsBadCodedParam, 4);
}

// An argument as it goes into a call.
struct Passed {
  void* pointer = nullptr;
  double number = 0;
};

struct Export {
  std::string name;
  const void* address = nullptr;
  std::vector<Argument> arguments;
  std::function<ZppStatus(const void* address, const std::vector<Passed>&)> invoke;
  bool checks = true;           // false: an internal step that trusts its arguments
  ZppStatus status = zppStsOk;  // of the accepted call of the contract run
  bool returnsStatus = true;    // false: a void function, which counts as zppStsOk

  ZppStatus call(const std::vector<Passed>& passed) const { return invoke(address, passed); }
  Export trusting() const {
    return with([](Export& e) { e.checks = false; });
  }
  Export returning(ZppStatus expected) const {
    return with([&](Export& e) { e.status = expected; });
  }

 private:
  template <class Change>
  Export with(Change change) const {
    Export copy = *this;
    change(copy);
    return copy;
  }
};

template <class T>
constexpr Element elementOf() {
  if constexpr (std::is_same_v<T, Zpp32f>)
    return Element::f32;
  else if constexpr (std::is_same_v<T, Zpp16s> || std::is_same_v<T, Zpp16sc>)
    return Element::s16;
  else if constexpr (std::is_same_v<T, Zpp16u>)
    return Element::u16;
  else if constexpr (std::is_same_v<T, Zpp32s>)
    return Element::s32;
  else if constexpr (std::is_same_v<T, Zpp32u>)
    return Element::u32;
  else
    return Element::u8;  // bytes and state blocks
}

template <class T>
T passAs(const Passed& p) {
  if constexpr (std::is_pointer_v<T>)
    return static_cast<T>(p.pointer);
  else if constexpr (std::is_floating_point_v<T>)
    return static_cast<T>(p.number);
  else
    return static_cast<T>(static_cast<std::int64_t>(p.number));
}

template <class Return, class... Types, class... Arguments>
Export row(const char* name, Return (*function)(Types...), Arguments... arguments) {
  static_assert(sizeof...(Types) == sizeof...(Arguments), "one description for each argument");
  Export e;
  e.name = name;
  e.address = reinterpret_cast<const void*>(function);
  e.returnsStatus = !std::is_void_v<Return>;
  e.arguments = {arguments...};
  std::size_t i = 0;
  const auto complete = [&]<class T>(std::type_identity<T>) {
    Argument& a = e.arguments[i++];
    if constexpr (std::is_pointer_v<T>) {
      using Item = std::remove_const_t<std::remove_pointer_t<T>>;
      if (!a.untyped) a.element = elementOf<Item>();
      a.perItem = std::is_same_v<Item, Zpp16sc> ? 2 : 1;
    } else {
      a.real = std::is_floating_point_v<T>;
      if constexpr (!std::is_floating_point_v<T>)
        a.received = [](std::int64_t given) { return static_cast<std::int64_t>(static_cast<T>(given)); };
    }
  };
  (complete(std::type_identity<Types>{}), ...);
  e.invoke = [](const void* address, const std::vector<Passed>& passed) {
    const auto callee = reinterpret_cast<Return (*)(Types...)>(const_cast<void*>(address));
    return [&]<std::size_t... I>(std::index_sequence<I...>) {
      if constexpr (std::is_void_v<Return>)
        return callee(passAs<Types>(passed[I])...), zppStsOk;
      else
        return callee(passAs<Types>(passed[I])...);
    }
    (std::index_sequence_for<Types...>{});
  };
  return e;
}

#define FUNCTION(f) #f, f

// One list a room or topic, in <name>_exports.cpp
std::vector<Export> coreExports();
std::vector<Export> lpcExports();
std::vector<Export> g729LspExports();
std::vector<Export> g729PitchExports();
std::vector<Export> g729FcbExports();
std::vector<Export> g729GainExports();
std::vector<Export> g729PostfilterExports();
std::vector<Export> g729FloatLspExports();
std::vector<Export> g729FloatPitchExports();
std::vector<Export> g723Exports();
std::vector<Export> amrExports();
std::vector<Export> g726Exports();
std::vector<Export> g7221Exports();
std::vector<Export> amrCodecExports();
std::vector<Export> amrwbExports();
std::vector<Export> g723CodecExports();
std::vector<Export> g728Exports();
std::vector<Export> g729AnnexesExports();
std::vector<Export> gsmfrExports();

inline std::vector<Export> allExports() {
  std::vector<Export> all;
  for (auto list :
       {coreExports, lpcExports, g729LspExports, g729PitchExports, g729FcbExports, g729GainExports, g729PostfilterExports,
        g729FloatLspExports, g729FloatPitchExports, g723Exports, amrExports, g726Exports, g7221Exports, amrCodecExports,
        amrwbExports, g723CodecExports, g728Exports, g729AnnexesExports, gsmfrExports})
    for (auto& e : list()) all.push_back(std::move(e));
  return all;
}

}  // namespace test
