# Another processor, with Clang, which compiles for all of them, Debian's libraries for cross compilers, and qemu-user, which runs
# what the build has made. (Debian's GCC for other processors cannot be installed beside g++-multilib, which the 32-bit builds of
# x86 need.) A file beside this one names the processor, the triplet of Debian's packages and qemu's name for it, and includes
# this one.
set(CMAKE_SYSTEM_NAME Linux)
foreach(language C CXX)
  set(CMAKE_${language}_COMPILER_TARGET ${triplet})
endforeach()
set(CMAKE_C_COMPILER clang)
set(CMAKE_CXX_COMPILER clang++)
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-${qemu} -L /usr/${triplet})

# Libraries of that processor; programs of this machine; headers of both.
set(CMAKE_LIBRARY_ARCHITECTURE ${triplet})
set(CMAKE_FIND_ROOT_PATH /usr/${triplet})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
