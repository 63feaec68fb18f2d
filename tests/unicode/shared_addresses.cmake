# Each name of LIST must appear among the dynamic relocations of LIBRARY.
execute_process(COMMAND ${READELF} --relocs --wide ${LIBRARY} OUTPUT_VARIABLE relocations COMMAND_ERROR_IS_FATAL ANY)
file(STRINGS ${LIST} names REGEX "^[A-Za-z_]")
foreach(name IN LISTS names)
  if(NOT relocations MATCHES "R_X86_64_(64|GLOB_DAT)[^\n]* ${name}[@ \n]")
    message(SEND_ERROR "${name} is bound inside the library: a program's own address would not be known")
  endif()
endforeach()
