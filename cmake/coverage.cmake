# Counts in what is shipped, and not in the tests: unoptimised, so that each line and branch is still there to be counted.
if(VXNLS_COVERAGE)
  foreach(target vxnlsloc_objects vxhost_objects vxnlsldb_core vxnlsldb vxnlsudb vxemsg vxnls_command vxnls)
    target_compile_options(${target} PRIVATE --coverage -fprofile-update=atomic -O0)
  endforeach()
endif()
