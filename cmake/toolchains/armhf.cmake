set(CMAKE_SYSTEM_PROCESSOR arm)
set(triplet arm-linux-gnueabihf)
set(qemu arm)
include(${CMAKE_CURRENT_LIST_DIR}/debian.cmake)
