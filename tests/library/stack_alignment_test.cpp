// Every export, called with a stack that only the old i386 ABI would call aligned: code that spills SSE registers without
// realigning crashes, or reads back what it has not written.
#include <gtest/gtest.h>

#include <bit>

#include "exports/call.h"

// Calls function(arguments[0], ...) with the stack pointer, before the arguments are pushed, `offset` bytes below a multiple
// of 16.
extern "C" int callWithStackOffset(const void* function, const Zpp32u* arguments, int count, int offset);

asm(R"(
.text
.globl callWithStackOffset
callWithStackOffset:
  push %ebp
  mov %esp, %ebp
  push %esi
  push %edi
  push %ebx
  mov 12(%ebp), %esi
  mov 16(%ebp), %ecx
  and $-16, %esp
  sub 20(%ebp), %esp
1:
  dec %ecx
  js 2f
  push (%esi,%ecx,4)
  jmp 1b
2:
  call *8(%ebp)
  lea -12(%ebp), %esp
  pop %ebx
  pop %edi
  pop %esi
  pop %ebp
  ret
)");

namespace test {
namespace {

TEST(StackAlignment, FourBytesAreEnoughForEveryExport) {
  for (const Export& e : allExports()) {
    Call aligned(e, {Place::Kind::middle, 2});
    aligned();
    for (int offset = 0; offset < 16; offset += 4) {
      Call call(e, {Place::Kind::middle, 2});
      std::vector<Zpp32u> words;
      for (std::size_t i = 0; i < e.arguments.size(); ++i) {
        const Argument& a = e.arguments[i];
        words.push_back(a.isBuffer() ? static_cast<Zpp32u>(reinterpret_cast<std::uintptr_t>(call[i].pointer))
                        : a.real     ? std::bit_cast<Zpp32u>(static_cast<float>(call[i].number))
                                     : static_cast<Zpp32u>(static_cast<std::int64_t>(call[i].number)));
      }
      const int status = callWithStackOffset(e.address, words.data(), static_cast<int>(words.size()), offset);
      if (e.returnsStatus) {
        EXPECT_EQ(status, e.status) << e.name;
      }
      EXPECT_EQ(call.contents(), aligned.contents()) << e.name;
    }
  }
}

}  // namespace
}  // namespace test
