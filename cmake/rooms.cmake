# A room is a folder of the library; its CMakeLists.txt names its sources with vx_room_sources().
add_library(vxnlsloc_objects OBJECT)
target_include_directories(vxnlsloc_objects PUBLIC ${PROJECT_SOURCE_DIR}/include ${PROJECT_SOURCE_DIR})
target_compile_options(vxnlsloc_objects PRIVATE
  -fvisibility=hidden -fvisibility-inlines-hidden -fno-exceptions -fno-rtti -fno-threadsafe-statics)

function(vx_room_sources)
  target_sources(vxnlsloc_objects PRIVATE ${ARGV})
endfunction()

# Sources that are made of vector instructions. g++ would build their constants anew in every turn of a loop (through
# general registers, which its tuning takes for cheap); this has them loaded from memory. Loops of 70 instructions lose
# a quarter of their speed when they begin anywhere: they are aligned.
function(vx_vector_sources)
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_SYSTEM_PROCESSOR MATCHES "^(x86_64|AMD64)$")
    set_property(SOURCE ${ARGV} TARGET_DIRECTORY vxnlsloc_objects
      APPEND PROPERTY COMPILE_OPTIONS -mtune-ctrl=^inter_unit_moves_to_vec
      -falign-functions=64 -falign-loops=64 -falign-jumps=32)
  endif()
endfunction()

function(vx_rooms)
  foreach(room IN LISTS ARGV)
    add_subdirectory(${room})
  endforeach()
endfunction()

# libvxnlsloc.so, linked as C: it needs the C library and nothing else. module/exports.txt is the one list of exports;
# module/shared_addresses.txt names the functions and data whose address a program and the library must agree on.
function(vx_link_library)
  set(exports ${PROJECT_SOURCE_DIR}/module/exports.txt)
  set(shared ${PROJECT_SOURCE_DIR}/module/shared_addresses.txt)
  set_property(DIRECTORY ${PROJECT_SOURCE_DIR} APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${exports} ${shared})
  file(STRINGS ${exports} names REGEX "^[A-Za-z_]")
  list(JOIN names ";\n    " text)
  file(CONFIGURE OUTPUT ${PROJECT_BINARY_DIR}/vxnlsloc.map
    CONTENT "VXNLSLOC_6 {\n  global:\n    @text@;\n  local:\n    *;\n};\n" @ONLY)
  file(STRINGS ${shared} names REGEX "^[A-Za-z_]")
  list(JOIN names ";\n  " text)
  file(CONFIGURE OUTPUT ${PROJECT_BINARY_DIR}/vxnlsloc.dynamic CONTENT "{\n  @text@;\n};\n" @ONLY)

  add_library(vxnlsloc SHARED $<TARGET_OBJECTS:vxnlsloc_objects>)
  target_include_directories(vxnlsloc PUBLIC
    $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include> $<INSTALL_INTERFACE:include>)
  target_link_libraries(vxnlsloc PRIVATE m)
  target_link_options(vxnlsloc PRIVATE
    -Wl,--version-script=${PROJECT_BINARY_DIR}/vxnlsloc.map -Wl,-Bsymbolic-functions
    -Wl,--dynamic-list=${PROJECT_BINARY_DIR}/vxnlsloc.dynamic
    -Wl,--as-needed -static-libgcc)
  if(NOT VXNLS_SANITIZE)
    target_link_options(vxnlsloc PRIVATE -Wl,-z,defs)
  endif()
  set_target_properties(vxnlsloc PROPERTIES LINKER_LANGUAGE C
    VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR}
    LINK_DEPENDS "${PROJECT_BINARY_DIR}/vxnlsloc.map;${PROJECT_BINARY_DIR}/vxnlsloc.dynamic")
endfunction()
