# Another processor with Debian's cross compiler (g++-TRIPLET) and qemu-user, which runs what the build has made. A file beside
# this one names the processor, the triplet of its compiler and qemu's name for it, and includes this one.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_C_COMPILER ${triplet}-gcc)
set(CMAKE_CXX_COMPILER ${triplet}-g++)
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-${qemu} -L /usr/${triplet})

# Libraries of the processor only (dpkg --add-architecture); programs of this machine; headers lie in both places.
set(CMAKE_FIND_ROOT_PATH /usr/${triplet})
set(CMAKE_LIBRARY_ARCHITECTURE ${triplet})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
