# Debian packages, one a component of the installation: `cpack --config BUILD/CPackConfig.cmake`, or script/package.
# Where the tools of Debian are missing there are none.
find_program(VXNLS_SHLIBDEPS dpkg-shlibdeps)
if(NOT VXNLS_GZIP OR NOT VXNLS_SHLIBDEPS)
  message(STATUS "No Debian packages: gzip or dpkg-shlibdeps is missing")
  return()
endif()

# The newest entry of Debian's changelog has the version, which is this project's and the packages' own.
file(STRINGS packaging/changelog entry REGEX "^vxnlsloc \\(" LIMIT_COUNT 1)
if(NOT entry MATCHES "^vxnlsloc \\(${PROJECT_VERSION}-([0-9a-z.+~]+)\\)")
  message(FATAL_ERROR "packaging/changelog begins with another version than ${PROJECT_VERSION}: ${entry}")
endif()
set(release ${CMAKE_MATCH_1})
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS packaging/changelog)
file(STRINGS packaging/changelog time REGEX "^ -- " LIMIT_COUNT 1)
string(REGEX REPLACE "^.*>  " "" time "${time}")
execute_process(COMMAND date --date=${time} +%s OUTPUT_VARIABLE time OUTPUT_STRIP_TRAILING_WHITESPACE
  COMMAND_ERROR_IS_FATAL ANY)

set(library libvxnlsloc${PROJECT_VERSION_MAJOR})
set(host libvxhost${PROJECT_VERSION_MAJOR})
set(development libvxnlsloc-dev)
set(command vxnls)
set(same "(= ${PROJECT_VERSION}-${release})")

# Every package has its changelogs and its licence.
set(documents ${PROJECT_BINARY_DIR}/packaging)
file(MAKE_DIRECTORY ${documents})
foreach(pair packaging/changelog:changelog.Debian.gz CHANGELOG.md:changelog.gz)
  string(REPLACE ":" ";" pair ${pair})
  list(GET pair 0 from)
  list(GET pair 1 to)
  add_custom_command(OUTPUT ${documents}/${to} DEPENDS ${from} VERBATIM
    COMMAND ${VXNLS_GZIP} -9nc ${PROJECT_SOURCE_DIR}/${from} > ${documents}/${to})
  list(APPEND compressed ${documents}/${to})
endforeach()
add_custom_target(package_documents ALL DEPENDS ${compressed})

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME vxnlsloc)
set(CPACK_PACKAGE_CONTACT "The vxnlsloc authors <maintainers@vxnlsloc.example>")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_SET_DESTDIR ON)  # installed as below /usr, which needs no run path
set(CPACK_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_COMPONENTS_ALL library host development command)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE ${release})
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_LIBRARY_OUTPUT_DIRECTORY})
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)

# vx_package(component section multiarch dependencies summary text): the package of a component; its name stands in a
# variable of the component's name.
set(about "\
vxnlsloc writes and reads dates, times, datetimes and numbers by the
patterns of a locale, and has exact coders and services for UTF-8,
UTF-16 and UTF-32 text.
.
")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")  # each has its own
macro(vx_package component section multiarch depends summary text)
  string(TOUPPER ${component} key)
  set(key CPACK_DEBIAN_${key})
  set(${key}_PACKAGE_NAME ${${component}})
  set(${key}_PACKAGE_SECTION ${section})
  set(${key}_PACKAGE_MULTIARCH ${multiarch})
  set(${key}_PACKAGE_DEPENDS "${depends}")
  set(${key}_DESCRIPTION "${summary}\n${about}${text}")
  install(FILES packaging/copyright ${compressed} DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${${component}}
    COMPONENT ${component})
endmacro()

# vx_package_library(component name): what other packages depend on when they link the library NAME of this package.
macro(vx_package_library component name)
  file(CONFIGURE OUTPUT ${documents}/${component}/shlibs
    CONTENT "${name} ${PROJECT_VERSION_MAJOR} ${${component}} (>= ${PROJECT_VERSION})\n")
  file(CONFIGURE OUTPUT ${documents}/${component}/triggers CONTENT "activate-noawait ldconfig\n")
  string(TOUPPER ${component} key)
  set(CPACK_DEBIAN_${key}_PACKAGE_CONTROL_EXTRA ${documents}/${component}/shlibs ${documents}/${component}/triggers)
endmacro()

vx_package(library libs same "" "locale-aware text services" "\
This package contains the library, which needs the C library alone. A
program loads it through a host: libvxhost or one of its own.")
vx_package_library(library libvxnlsloc)

vx_package(host libs same "${library} ${same}, tzdata" "locale-aware text services - host on ICU" "\
This package contains the host that gives the library its locales (from
the CLDR data of ICU), zones, character data and messages, with the
extensions that it loads.")
vx_package_library(host libvxhost)
install(FILES packaging/host.lintian-overrides DESTINATION ${CMAKE_INSTALL_DATADIR}/lintian/overrides RENAME ${host}
  COMPONENT host)

vx_package(development libdevel same "${library} ${same}, ${host} ${same}, libc6-dev"
  "locale-aware text services - development files" "\
This package contains the headers for C and C++, and the files by which
CMake and pkg-config find the library and its host.")

vx_package(command utils foreign "${library} ${same}, ${host} ${same}" "locale-aware text services - command" "\
This package contains the command vxnls, which formats, reads, checks
and converts dates, numbers and text: values of the command line, lines
of a pipe, columns of a table.")

set(CPACK_VXNLS_TIME ${time})  # of every file in the packages
set(CPACK_POST_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/packaging/finish_packages.cmake)
include(CPack)
