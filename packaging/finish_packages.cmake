# Runs when CPack has written the packages, and writes them anew: CPack adds scripts that call ldconfig, where Debian
# wants a trigger; and every file gets one time and the usual rights, so that packages of equal files are equal.
find_program(DPKG_DEB dpkg-deb REQUIRED)
set(ENV{SOURCE_DATE_EPOCH} ${CPACK_VXNLS_TIME})
foreach(package IN LISTS CPACK_PACKAGE_FILES)
  set(tree ${package}.tree)
  file(REMOVE_RECURSE ${tree})
  execute_process(COMMAND ${DPKG_DEB} --raw-extract ${package} ${tree} COMMAND_ERROR_IS_FATAL ANY)
  file(REMOVE ${tree}/DEBIAN/postinst ${tree}/DEBIAN/postrm)
  execute_process(COMMAND chmod -R u=rwX,go=rX ${tree} COMMAND_ERROR_IS_FATAL ANY)
  execute_process(COMMAND find ${tree} -exec touch --no-dereference --date=@${CPACK_VXNLS_TIME} {} +
    COMMAND_ERROR_IS_FATAL ANY)
  execute_process(COMMAND ${DPKG_DEB} --root-owner-group --build ${tree} ${package} OUTPUT_QUIET
    COMMAND_ERROR_IS_FATAL ANY)
  file(REMOVE_RECURSE ${tree})
endforeach()
