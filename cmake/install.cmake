# What `cmake --install` puts where, and the files by which other projects find it: a CMake package and pkg-config.
# Debian's multiarch folder is searched below every prefix of Debian, so that one build serves /usr and others. A project
# that has this one in it decides for both.
if(PROJECT_IS_TOP_LEVEL AND NOT DEFINED CMAKE_INSTALL_LIBDIR AND EXISTS /etc/debian_version AND CMAKE_LIBRARY_ARCHITECTURE)
  set(CMAKE_INSTALL_LIBDIR lib/${CMAKE_LIBRARY_ARCHITECTURE} CACHE PATH "Folder of libraries below the prefix")
endif()
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)
set(private_dir ${CMAKE_INSTALL_LIBDIR}/vxnls-${PROJECT_VERSION_MAJOR})  # where libvxhost.so looks for its extensions
set(cmake_dir ${CMAKE_INSTALL_LIBDIR}/cmake/vxnlsloc)

# The C++ face is headers alone.
add_library(vxnls_cpp INTERFACE)
target_compile_features(vxnls_cpp INTERFACE cxx_std_20)
target_include_directories(vxnls_cpp INTERFACE $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include>)
target_link_libraries(vxnls_cpp INTERFACE vxhost vxnlsloc)

set_target_properties(vxnlsloc PROPERTIES EXPORT_NAME loc)
set_target_properties(vxhost PROPERTIES EXPORT_NAME host)
set_target_properties(vxnls_cpp PROPERTIES EXPORT_NAME cpp)
add_library(vxnls::loc ALIAS vxnlsloc)
add_library(vxnls::host ALIAS vxhost)
add_library(vxnls::cpp ALIAS vxnls_cpp)

install(TARGETS vxnlsloc EXPORT vxnlsloc
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT library NAMELINK_COMPONENT development
  INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(TARGETS vxhost EXPORT vxnlsloc
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT host NAMELINK_COMPONENT development
  INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(TARGETS vxnls_cpp EXPORT vxnlsloc)
install(TARGETS vxemsg vxnlsldb vxnlsudb LIBRARY DESTINATION ${private_dir} COMPONENT host)
install(DIRECTORY include/vxnls DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT development
  FILES_MATCHING PATTERN "*.h" PATTERN "*.hpp")

# The command finds the libraries from where it lies; below /usr the system knows them.
file(RELATIVE_PATH from_bin_to_lib /${CMAKE_INSTALL_BINDIR} /${CMAKE_INSTALL_LIBDIR})
set_target_properties(vxnls PROPERTIES INSTALL_RPATH "$ORIGIN/${from_bin_to_lib}")
install(TARGETS vxnls RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT command)
install(CODE "
  if(CMAKE_INSTALL_PREFIX STREQUAL \"/usr\")
    file(RPATH_REMOVE FILE \"\$ENV{DESTDIR}/usr/${CMAKE_INSTALL_BINDIR}/vxnls\")
  endif()" COMPONENT command)

install(EXPORT vxnlsloc NAMESPACE vxnls:: FILE vxnlsloc-targets.cmake DESTINATION ${cmake_dir} COMPONENT development)
configure_package_config_file(packaging/vxnlsloc-config.cmake.in ${PROJECT_BINARY_DIR}/vxnlsloc-config.cmake
  INSTALL_DESTINATION ${cmake_dir} NO_SET_AND_CHECK_MACRO)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/vxnlsloc-config-version.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/vxnlsloc-config.cmake ${PROJECT_BINARY_DIR}/vxnlsloc-config-version.cmake
  DESTINATION ${cmake_dir} COMPONENT development)

# pkg-config files name the prefix by their own place, so that an installed tree may be moved.
file(RELATIVE_PATH from_pc_to_prefix /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
string(REGEX REPLACE "/$" "" from_pc_to_prefix "${from_pc_to_prefix}")
foreach(name vxnlsloc vxnlshost)
  configure_file(packaging/${name}.pc.in ${PROJECT_BINARY_DIR}/${name}.pc @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/${name}.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)
endforeach()

# The command writes its own completion scripts.
set(completions ${PROJECT_BINARY_DIR}/completions)
add_custom_command(OUTPUT ${completions}/vxnls ${completions}/_vxnls ${completions}/vxnls.fish
  COMMAND ${CMAKE_COMMAND} -E make_directory ${completions}
  COMMAND vxnls completion bash > ${completions}/vxnls
  COMMAND vxnls completion zsh > ${completions}/_vxnls
  COMMAND vxnls completion fish > ${completions}/vxnls.fish
  DEPENDS vxnls VERBATIM)
add_custom_target(completions ALL DEPENDS ${completions}/vxnls ${completions}/_vxnls ${completions}/vxnls.fish)
foreach(place vxnls:bash-completion/completions _vxnls:zsh/vendor-completions vxnls.fish:fish/vendor_completions.d)
  string(REPLACE ":" ";" place ${place})
  list(GET place 0 file)
  list(GET place 1 folder)
  install(FILES ${completions}/${file} DESTINATION ${CMAKE_INSTALL_DATADIR}/${folder} COMPONENT command)
endforeach()

# Manual pages, packed as Debian has them where there is gzip: of the command, its files, and the library.
set(pages ${PROJECT_BINARY_DIR}/man)
find_program(VXNLS_GZIP gzip)
if(VXNLS_GZIP)
  file(GLOB written_by_hand ${pages}/man[2-9]/*)
  add_custom_command(OUTPUT ${pages}-packed/written DEPENDS man_pages ${pages}/man1/vxnls.1 ${written_by_hand}
    COMMAND ${CMAKE_COMMAND} -E rm -rf ${pages}-packed
    COMMAND ${CMAKE_COMMAND} -E copy_directory ${pages} ${pages}-packed/man
    COMMAND ${VXNLS_GZIP} -9nr ${pages}-packed/man
    COMMAND ${CMAKE_COMMAND} -E touch ${pages}-packed/written VERBATIM)
  add_custom_target(packed_man_pages ALL DEPENDS ${pages}-packed/written)
  set(pages ${pages}-packed/man)
endif()
install(DIRECTORY ${pages}/man1 ${pages}/man5 DESTINATION ${CMAKE_INSTALL_MANDIR} COMPONENT command)
install(DIRECTORY ${pages}/man3 DESTINATION ${CMAKE_INSTALL_MANDIR} COMPONENT development)

# The reference manual, in BUILD/manual.
add_custom_target(manual COMMAND ${PROJECT_SOURCE_DIR}/script/manual ${PROJECT_BINARY_DIR}/manual VERBATIM)
