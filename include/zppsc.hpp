// zppsc for C++20: the functions of zppsc.h called with spans, statuses as values, state blocks that take care of themselves.
// Header-only, in namespace zpp.
//
// There is one way to call all functions instead of a second prototype for each:
//
//   std::array<Zpp16s, 10> lsp, lsf;
//   zpp::call<zppsLSPToLSF_G729_16s>(lsp, lsf).orThrow();
//   if (zpp::Status status = zpp::call<zppsLSPToLSF_G729_16s>(lsp, lsf); status.failed()) return status.what();
//
// Where the C function takes a pointer, call takes what lies in one piece: an array, a vector, a span; or one variable, for the
// functions that write or read a single value; or a State; or a pointer. Where it takes a number, any that it can hold: a
// size() needs no cast. What does not fit does not compile: another element type, a constant destination, and, for the
// functions whose buffers have a constant shape (zppsc/extents.hpp), an array or a span whose static extent is too short. A
// span whose extent is not known before it runs gives zppStsBadSize, as does a number that the C function's type cannot hold.
//
// A state block is a State of its two functions, and a value: a copy continues on its own.
//
//   using Coder = zpp::State<zppsEncodeGetStateSize_G726_16s8u, zppsEncodeInit_G726_16s8u>;
//   Coder coder = Coder::create(ZPP_RATE_32000).value();
//   zpp::call<zppsEncode_G726_16s8u>(coder, pcm, codes, pcm.size()).orThrow();
#ifndef ZPPSC_HPP
#define ZPPSC_HPP

#include <array>
#include <concepts>
#include <cstddef>
#include <ranges>
#include <span>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

#include "zppsc.h"
#include "zppsc/extents.hpp"
#include "zppsc/result.hpp"

namespace zpp {

// The result of a call: success, an error (nothing has been written) or a warning
class [[nodiscard]] Status {
 public:
  constexpr Status(ZppStatus code) noexcept : code_(code) {}
  constexpr ZppStatus code() const noexcept { return code_; }
  constexpr bool failed() const noexcept { return code_ < 0; }
  constexpr bool warned() const noexcept { return code_ > 0; }
  friend constexpr bool operator==(Status, Status) noexcept = default;

  // Throws Exception<Status> for an error; whoever does not care for warnings need not look at the rest.
  constexpr void orThrow() const {
    if (failed()) raise(*this);
  }

  constexpr const char* what() const noexcept {
    switch (code_) {
      case zppStsOk:
        return "success";
      case zppStsBadArgument:
        return "a value that the operation cannot use";
      case zppStsBadSize:
        return "a length that the function does not support";
      case zppStsOutOfRange:
        return "a rate, mode, flag or index that the function does not accept";
      case zppStsNullPointer:
        return "a required pointer is null";
      case zppStsBadCodedParam:
        return "a coded parameter outside the range of the codec";
      case zppStsOutOfDomain:
        return "an input value outside the domain of the operation";
      case zppStsBadScale:
        return "a scale factor that the function does not support";
      case zppStsShiftErr:
        return "a shift count below 0";
      case zppStsLpcCalcErr:
        return "the Levinson-Durbin recursion met an unstable stage";
      case zppStsOverflowWarn:
        return "the computation overflowed";
      case zppStsLSFLowClamped:
        return "the lowest LSF was raised";
      case zppStsLSFHighClamped:
        return "the highest LSF was lowered";
      case zppStsLSFBothClamped:
        return "the lowest LSF was raised and the highest lowered";
      default:
        return "an unknown status";
    }
  }

 private:
  ZppStatus code_;
};

namespace detail {

template <class T>
inline constexpr std::size_t staticExtent = std::dynamic_extent;
template <class T, std::size_t n>
inline constexpr std::size_t staticExtent<T[n]> = n;
template <class T, std::size_t n>
inline constexpr std::size_t staticExtent<std::array<T, n>> = n;
template <class T, std::size_t n>
inline constexpr std::size_t staticExtent<std::span<T, n>> = n;

template <class A>
using Element = std::remove_reference_t<std::ranges::range_reference_t<A>>;

template <class T>
concept StateBlock = requires(T& t) {
  typename std::remove_cvref_t<T>::IsStateBlock;
};

// Elements of type From, seen as elements of type To: the same, or constant
template <class From, class To>
concept SeenAs = std::is_convertible_v<std::add_pointer_t<From[]>, std::add_pointer_t<To[]>>;

// A: what is passed, a reference; P: the parameter of the C function
template <class A, class P>
concept Buffer = std::is_pointer_v<P> && std::ranges::contiguous_range<A> && std::ranges::sized_range<A> &&
    SeenAs<Element<A>, std::remove_pointer_t<P>>;
template <class A, class P>
concept Variable = std::is_pointer_v<P> && std::is_lvalue_reference_v<A> && !StateBlock<A> &&
                   !std::is_array_v<std::remove_reference_t<A>> && SeenAs<std::remove_reference_t<A>, std::remove_pointer_t<P>>;
template <class A, class P>
concept Block = (std::same_as<P, void*> && StateBlock<A> && !std::is_const_v<std::remove_reference_t<A>>) ||
                (std::same_as<P, const void*> && StateBlock<A>);
template <class A, class P>
concept Pointer = std::is_pointer_v<P> && std::is_convertible_v<A, P> && !std::is_array_v<std::remove_reference_t<A>>;
template <class A>
inline constexpr bool isNumber = std::is_arithmetic_v<A> || std::is_enum_v<A>;
template <class A, class P>
concept Number = std::is_arithmetic_v<P> && isNumber<std::remove_cvref_t<A>> &&
    (std::is_floating_point_v<P> || !std::is_floating_point_v<std::remove_cvref_t<A>>);

template <class A, class P, std::size_t least>
concept Accepted = (Buffer<A, P> && staticExtent<std::remove_cvref_t<A>> >= least) || Variable<A, P> || Block<A, P> ||
                   Pointer<A, P> || Number<A, P>;

template <class P, class A>
constexpr P passed(A& a) noexcept {
  if constexpr (std::is_arithmetic_v<P>)
    return static_cast<P>(a);
  else if constexpr (Buffer<A&, P>)
    return std::ranges::data(a);
  else if constexpr (Block<A&, P>)
    return a.data();
  else if constexpr (Variable<A&, P>)
    return &a;
  else
    return a;
}

// Whether what cannot be told before it runs is in order
template <class P, std::size_t least, class A>
constexpr bool fits(const A& a) noexcept {
  if constexpr (Number<const A&, P> && std::is_integral_v<P>) {
    if constexpr (std::is_enum_v<A>)
      return fits<P, least>(static_cast<std::underlying_type_t<A>>(a));
    else
      return std::in_range<P>(+a);
  } else if constexpr (std::ranges::sized_range<const A> && std::is_pointer_v<P>) {
    return least == 0 || std::ranges::size(a) >= least;
  } else {
    return true;
  }
}

template <auto function>
consteval std::size_t extent(std::size_t argument) {
  if constexpr (std::size(extents<function>) != 0)
    return extents<function>[argument];
  else
    return 0;
}

// body(0, 1, ... n - 1), the numbers as types
template <class Body, std::size_t... i>
constexpr auto counted(std::index_sequence<i...>, Body body) {
  return body(std::integral_constant<std::size_t, i>()...);
}
template <std::size_t n, class Body>
constexpr auto counted(Body body) {
  return counted(std::make_index_sequence<n>(), body);
}

template <class Signature>
struct Prototype;

template <class Return, class... P>
struct Prototype<Return (*)(P...)> {
  // The position of the state block among the parameters
  static consteval std::size_t stateAt() {
    const bool isState[] = {std::same_as<P, void*>...};
    std::size_t at = 0;
    while (!isState[at]) ++at;
    return at;
  }

  template <auto function, class... A>
  static consteval bool accepts() {
    if constexpr (sizeof...(A) != sizeof...(P))
      return false;
    else
      return counted<sizeof...(P)>([](auto... i) { return (Accepted<A, P, extent<function>(i)> && ...); });
  }

  template <auto function, class... A>
  static Status call(A&... arguments) noexcept {
    const bool allFit = counted<sizeof...(P)>([&](auto... i) { return (fits<P, extent<function>(i)>(arguments) && ...); });
    if (!allFit) return zppStsBadSize;
    if constexpr (std::is_void_v<Return>)
      return function(passed<P>(arguments)...), zppStsOk;
    else
      return function(passed<P>(arguments)...);
  }
};

}  // namespace detail

// Whether call<function> takes arguments of these types
template <auto function, class... A>
concept CallableWith = detail::Prototype<decltype(function)>::template accepts<function, A...>();

// Calls a function of zppsc.h.
template <auto function, class... A>
Status call(A&&... arguments) noexcept requires CallableWith<function, A&&...> {
  return detail::Prototype<decltype(function)>::template call<function>(arguments...);
}

// What a GetStateSize function takes before the size, where that is anything
template <class... A>
struct Sized : std::tuple<A...> {
  explicit Sized(A... arguments) : std::tuple<A...>(arguments...) {}
};

// A state block: getSize is the function that tells its size, init the one that starts it.
template <auto getSize, auto init>
class State {
 public:
  using IsStateBlock = void;

  // arguments: what init takes beside the state, in its order
  template <class... A>
  static Result<State, Status> create(A&&... arguments) {
    return create(Sized<>(), std::forward<A>(arguments)...);
  }
  template <class... S, class... A>
  static Result<State, Status> create(Sized<S...> sized, A&&... arguments) {
    Zpp32s bytes = 0;
    const Status size =
        std::apply([&bytes](auto... s) { return call<getSize>(s..., bytes); }, static_cast<const std::tuple<S...>&>(sized));
    if (size.failed()) return size;
    State state(static_cast<std::size_t>(bytes));
    const Status started = state.start(std::forward_as_tuple(arguments...));
    if (started.failed()) return started;
    return state;
  }

  void* data() noexcept { return bytes_.data(); }
  const void* data() const noexcept { return bytes_.data(); }
  std::size_t size() const noexcept { return bytes_.size(); }

 private:
  explicit State(std::size_t bytes) : bytes_(bytes) {}

  template <class Arguments>
  Status start(Arguments arguments) {
    constexpr std::size_t at = detail::Prototype<decltype(init)>::stateAt(), all = std::tuple_size_v<Arguments>;
    return detail::counted<at>([&](auto... before) {
      return detail::counted<all - at>([&](auto... behind) {
        return call<init>(std::get<before>(arguments)..., *this, std::get<at + behind>(arguments)...);
      });
    });
  }

  std::vector<std::byte> bytes_;
};

}  // namespace zpp

#endif
