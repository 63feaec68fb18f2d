# Warnings, hardening, equal builds, sanitizers and ccache for every target.
include(CheckPIESupported)
check_pie_supported()  # or position-independent programs are compiled, and not linked, as such
add_compile_options(-Wall -Wextra -Wpedantic -Wconversion -Wdate-time)
if(VXNLS_WERROR)
  add_compile_options(-Werror)
endif()

# Hardening. The checked functions of the C library need an optimising build, and hide from the sanitizers what these
# look for.
set(optimised "$<CONFIG:Release,RelWithDebInfo,MinSizeRel>")
add_compile_options(-fstack-protector-strong -fstack-clash-protection)
if(CMAKE_SYSTEM_PROCESSOR MATCHES "^(x86_64|AMD64|i.86)$")
  add_compile_options(-fcf-protection=full)
endif()
add_link_options(-Wl,-z,relro,-z,now -Wl,-z,noexecstack)
if(VXNLS_SANITIZE)
  add_compile_options(-fsanitize=${VXNLS_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  add_link_options(-fsanitize=${VXNLS_SANITIZE})
else()
  add_compile_options("$<${optimised}:-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=2>")
endif()

if(VXNLS_COVERAGE)
  add_link_options(--coverage)
endif()

# Two builds of one commit are equal bit for bit: no path of this machine enters a binary (the last map wins).
add_compile_options("$<${optimised}:-ffile-prefix-map=${PROJECT_SOURCE_DIR}=.;-ffile-prefix-map=${PROJECT_BINARY_DIR}=build>")
set(CMAKE_BUILD_RPATH_USE_ORIGIN ON)

find_program(VXNLS_CCACHE ccache)
if(VXNLS_CCACHE)
  set(CMAKE_C_COMPILER_LAUNCHER ${VXNLS_CCACHE})
  set(CMAKE_CXX_COMPILER_LAUNCHER ${VXNLS_CCACHE})
endif()
find_package(Threads REQUIRED)
