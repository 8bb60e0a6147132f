// A value or the reason why there is none, for zppsc.hpp and zppcodecs.hpp.
//
// Whoever wants exceptions asks for value(); whoever does not looks first, as with std::expected, whose names these are:
//
//   auto encoder = zpp::Encoder::create(*zpp::findCodec("g729a")).value();       // throws
//   if (auto payload = encoder.encode(pcm, buffer)) send(*payload);              // does not
//   else log(payload.error().what());
//
// Without exceptions in the compiler, value() of a failure ends the program.
#ifndef ZPPSC_RESULT_HPP
#define ZPPSC_RESULT_HPP

#include <cstdlib>
#include <exception>
#include <utility>
#include <variant>

namespace zpp {

// What is thrown for a failure that is a small value with what()
template <class Failure>
class Exception : public std::exception {
 public:
  explicit Exception(Failure failure) noexcept : failure_(failure) {}
  const char* what() const noexcept override { return failure_.what(); }
  Failure failure() const noexcept { return failure_; }

 private:
  Failure failure_;
};

template <class Failure>
[[noreturn]] void raise([[maybe_unused]] Failure failure) {
#if defined(__cpp_exceptions)
  throw Exception<Failure>(failure);
#else
  std::abort();
#endif
}

template <class Value, class Failure>
class [[nodiscard]] Result {
 public:
  constexpr Result(Value value) noexcept : content_(std::in_place_index<0>, std::move(value)) {}
  constexpr Result(Failure failure) noexcept : content_(std::in_place_index<1>, failure) {}

  constexpr bool has_value() const noexcept { return content_.index() == 0; }
  constexpr explicit operator bool() const noexcept { return has_value(); }

  // The value, which must be there
  constexpr Value& operator*() & noexcept { return *std::get_if<0>(&content_); }
  constexpr const Value& operator*() const& noexcept { return *std::get_if<0>(&content_); }
  constexpr Value&& operator*() && noexcept { return std::move(*std::get_if<0>(&content_)); }
  constexpr Value* operator->() noexcept { return std::get_if<0>(&content_); }
  constexpr const Value* operator->() const noexcept { return std::get_if<0>(&content_); }

  // The failure, which must be there
  constexpr Failure error() const noexcept { return *std::get_if<1>(&content_); }

  // The value, or Exception<Failure>
  constexpr Value& value() & { return checked(), **this; }
  constexpr const Value& value() const& { return checked(), **this; }
  constexpr Value&& value() && { return checked(), *std::move(*this); }

  template <class Default>
  constexpr Value value_or(Default&& other) const& {
    return has_value() ? **this : static_cast<Value>(std::forward<Default>(other));
  }

 private:
  constexpr void checked() const {
    if (!has_value()) raise(error());
  }

  std::variant<Value, Failure> content_;
};

}  // namespace zpp

#endif
