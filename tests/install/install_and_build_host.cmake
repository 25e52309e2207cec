# cmake -P script: install, then build and run the example host two ways.
# With -DPREFIX=<folder> it takes a tree installed already (a package unpacked with dpkg -x)
# instead of installing the build tree.
file(REMOVE_RECURSE ${WORK_DIR})

function(run)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE status OUTPUT_VARIABLE out ERROR_VARIABLE err)
  if(NOT status EQUAL 0)
    message(FATAL_ERROR "failed (${status}): ${ARGN}\n${out}\n${err}")
  endif()
  set(last_output "${out}" PARENT_SCOPE)
endfunction()

if(DEFINED PREFIX)
  set(prefix ${PREFIX})
else()
  set(prefix ${WORK_DIR}/prefix)
  run(${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${prefix})
endif()

# The installed command finds the installed library from its own place (its run path), with no
# LD_LIBRARY_PATH, and walks through the library in a prefix of its own.
if(WITH_COMMAND)
  unset(ENV{LD_LIBRARY_PATH})
  run(${prefix}/bin/yxtools version)
  if(NOT last_output MATCHES "YXTools [0-9]")
    message(FATAL_ERROR "the installed yxtools did not run:\n${last_output}")
  endif()
  set(ENV{YXTOOLS_PREFIX} ${WORK_DIR}/yxtools-prefix)
  set(ENV{LC_ALL} C)
  run(${prefix}/bin/yxtools demo)
endif()

set(sanitize_flags "")
if(SANITIZE)
  set(sanitize_flags "-fsanitize=address,undefined")
endif()

# 1. find_package(YXTools CONFIG)
run(${CMAKE_COMMAND} -S ${HOST_SOURCE} -B ${WORK_DIR}/host-cmake
    -DCMAKE_PREFIX_PATH=${prefix} -DCMAKE_CXX_COMPILER=${CXX} "-DCMAKE_CXX_FLAGS=${CXX_FLAGS} ${sanitize_flags}"
    "-DCMAKE_EXE_LINKER_FLAGS=${sanitize_flags}")
run(${CMAKE_COMMAND} --build ${WORK_DIR}/host-cmake)
run(${WORK_DIR}/host-cmake/host)
if(NOT last_output MATCHES "host: ok")
  message(FATAL_ERROR "the CMake host did not report success:\n${last_output}")
endif()

# 2. pkg-config
file(GLOB pc_file ${prefix}/lib*/pkgconfig/yxtools.pc ${prefix}/lib/*/pkgconfig/yxtools.pc)
get_filename_component(pc_dir "${pc_file}" DIRECTORY)
set(ENV{PKG_CONFIG_PATH} ${pc_dir})
run(pkg-config --cflags --libs yxtools)
string(STRIP "${last_output}" pc_flags)
separate_arguments(pc_flags UNIX_COMMAND "${pc_flags}")
run(${CXX} ${sanitize_flags} ${HOST_SOURCE}/host.cpp ${pc_flags} -o ${WORK_DIR}/host-pc)
file(GLOB libdir ${prefix}/lib*/libyxtools.so ${prefix}/lib/*/libyxtools.so)
get_filename_component(libdir "${libdir}" DIRECTORY)
set(ENV{LD_LIBRARY_PATH} ${libdir})
run(${WORK_DIR}/host-pc)
if(NOT last_output MATCHES "host: ok")
  message(FATAL_ERROR "the pkg-config host did not report success:\n${last_output}")
endif()
