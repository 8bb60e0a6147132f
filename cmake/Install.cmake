# What is installed where: libraries, headers, what CMake and pkg-config find them by, the program, its completions, man pages.
# Everything finds its neighbours relative to itself, so an installation may be moved.
include(CMakePackageConfigHelpers)

install(TARGETS zppsc zppcodecs EXPORT zppscTargets
  LIBRARY COMPONENT runtime NAMELINK_COMPONENT development)
install(EXPORT zppscTargets NAMESPACE zppsc:: DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/zppsc COMPONENT development)
if(ZPPSC_STATIC)
  install(TARGETS zppsc_static zppcodecs_static EXPORT zppscStaticTargets ARCHIVE COMPONENT development)
  install(EXPORT zppscStaticTargets NAMESPACE zppsc:: DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/zppsc COMPONENT development)
endif()
foreach(target zppsc zppsc_static zppcodecs zppcodecs_static)
  target_include_directories(${target} INTERFACE $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
endforeach()
install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/ TYPE INCLUDE COMPONENT development)

# find_package(zppsc); a package of another word size is passed over.
configure_package_config_file(cmake/zppscConfig.cmake.in ${PROJECT_BINARY_DIR}/zppscConfig.cmake
  INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/zppsc NO_SET_AND_CHECK_MACRO)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/zppscConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/zppscConfig.cmake ${PROJECT_BINARY_DIR}/zppscConfigVersion.cmake
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/zppsc COMPONENT development)

# pkg-config
if(IS_ABSOLUTE ${CMAKE_INSTALL_LIBDIR} OR IS_ABSOLUTE ${CMAKE_INSTALL_INCLUDEDIR})
  set(prefix ${CMAKE_INSTALL_PREFIX})
else()
  file(RELATIVE_PATH prefix /prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig /prefix)
  string(REGEX REPLACE "/$" "" prefix "\${pcfiledir}/${prefix}")
endif()
foreach(directory LIBDIR INCLUDEDIR)
  cmake_path(APPEND CMAKE_INSTALL_PREFIX "${CMAKE_INSTALL_${directory}}" OUTPUT_VARIABLE path)
  cmake_path(RELATIVE_PATH path BASE_DIRECTORY ${CMAKE_INSTALL_PREFIX} OUTPUT_VARIABLE pc_${directory})
  set(pc_${directory} "\${prefix}/${pc_${directory}}")
endforeach()
foreach(library zppsc zppcodecs)
  configure_file(cmake/${library}.pc.in ${PROJECT_BINARY_DIR}/${library}.pc @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/${library}.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)
endforeach()

install(FILES docs/man/zppsc.3 docs/man/zppcodecs.3 DESTINATION ${CMAKE_INSTALL_MANDIR}/man3 COMPONENT development)

if(TARGET zppcodec)
  install(TARGETS zppcodec COMPONENT program)
  install(FILES docs/man/zppcodec.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT program)
  set(completions ${PROJECT_SOURCE_DIR}/tools/zppcodec/completions)
  install(FILES ${completions}/zppcodec.bash RENAME zppcodec
    DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions COMPONENT program)
  install(FILES ${completions}/_zppcodec DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/site-functions COMPONENT program)
  install(FILES ${completions}/zppcodec.fish DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d COMPONENT program)
endif()
