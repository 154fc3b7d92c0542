# How tests start the programs of this build and inspect its libraries.
#
# Natively a test runs a program by its path. In a cross build the program
# runs in the emulator: tests get the path of a small script that runs it
# there, so that execv, popen and system(3) work unchanged.

# Sets <out> to the command that runs <target> from a test.
function(cdr_test_program target out)
  if(NOT CMAKE_CROSSCOMPILING_EMULATOR)
    set(${out} "$<TARGET_FILE:${target}>" PARENT_SCOPE)
    return()
  endif()
  set(script ${CMAKE_BINARY_DIR}/emulated/${target})
  get_property(done GLOBAL PROPERTY CDR_TEST_PROGRAM_${target})
  if(NOT done)
    list(JOIN CMAKE_CROSSCOMPILING_EMULATOR "' '" emulator)
    file(GENERATE OUTPUT ${script}
         CONTENT "#!/bin/sh\nexec '${emulator}' '$<TARGET_FILE:${target}>' \"$@\"\n"
         FILE_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
    set_property(GLOBAL PROPERTY CDR_TEST_PROGRAM_${target} TRUE)
  endif()
  set(${out} ${script} PARENT_SCOPE)
endfunction()

# CDR_LDD_COMMAND: `ldd -r`, or in a cross build the same check done by the
# target's dynamic loader in the emulator (list the libraries, bind every
# symbol, warn about those it cannot resolve).
if(CMAKE_CROSSCOMPILING_EMULATOR)
  list(JOIN CMAKE_CROSSCOMPILING_EMULATOR "' '" emulator)
  file(CONFIGURE OUTPUT ${CMAKE_BINARY_DIR}/emulated/ldd-r @ONLY CONTENT
"#!/bin/sh
LD_TRACE_LOADED_OBJECTS=1 LD_WARN=yes LD_BIND_NOW=yes exec '${emulator}' '${CDR_CROSS_LOADER}' \"$@\"
")
  file(CHMOD ${CMAKE_BINARY_DIR}/emulated/ldd-r PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ
       GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
  set(CDR_LDD_COMMAND ${CMAKE_BINARY_DIR}/emulated/ldd-r)
else()
  set(CDR_LDD_COMMAND "ldd -r")
endif()
