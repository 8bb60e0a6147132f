// How much stack a call takes, with everything that it calls: it runs on a stack that has been painted.
#pragma once

#include <pthread.h>

#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <vector>

namespace test {

// What calls may take. Elsewhere than on x86 compilers keep more on the stack.
#if defined(__i386__) || defined(__x86_64__)
constexpr std::size_t kPrimitiveStack = 12 << 10, kCodecStack = 20 << 10;
#else
constexpr std::size_t kPrimitiveStack = 24 << 10, kCodecStack = 40 << 10;
#endif

class PaintedStack {
 public:
  std::size_t depthOf(const std::function<void()>& call) {
    std::memset(stack_, kPaint, kSize);
    Run run{&call, nullptr};
    pthread_attr_t attributes;
    pthread_t thread;
    if (pthread_attr_init(&attributes) != 0 || pthread_attr_setstack(&attributes, stack_, kSize) != 0 ||
        pthread_create(&thread, &attributes, start, &run) != 0)
      std::abort();
    pthread_join(thread, nullptr);
    pthread_attr_destroy(&attributes);
    std::size_t unused = 0;
    while (stack_[unused] == kPaint) ++unused;
    return static_cast<std::size_t>(run.top - (stack_ + unused));
  }

 private:
  static constexpr std::size_t kSize = 1 << 18;
  static constexpr unsigned char kPaint = 0xC5;
  struct Run {
    const std::function<void()>* call;
    unsigned char* top;
  };
  static void* start(void* argument) {
    auto* run = static_cast<Run*>(argument);
    run->top = static_cast<unsigned char*>(__builtin_frame_address(0));
    (*run->call)();
    return nullptr;
  }
  unsigned char* const stack_ = static_cast<unsigned char*>(std::aligned_alloc(4096, kSize));

 public:
  PaintedStack() = default;
  ~PaintedStack() { std::free(stack_); }
  PaintedStack(const PaintedStack&) = delete;
  PaintedStack& operator=(const PaintedStack&) = delete;
};

}  // namespace test
