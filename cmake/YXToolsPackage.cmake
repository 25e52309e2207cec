# The Debian package: `cpack -G DEB` in a build tree (the `package` presets configure one for /usr).
#
# One package, yxtools, holds everything the install rules put in place: the shared library with
# its SONAME link, the headers, the CMake package, yxtools.pc and the yxtools command. Its Depends
# line is computed from the binaries by dpkg-shlibdeps, so it names exactly the shared libraries
# they load: ICU and SQLite, and the C and C++ runtimes (libc6, libstdc++6, libgcc-s1), which every
# Debian system has. CLI11 and nlohmann/json are header-only and leave no trace in it.
# CPack writes the archive itself; neither fakeroot nor root is needed to build it.
if(CMAKE_CROSSCOMPILING OR NOT UNIX)
  return()
endif()

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME yxtools)
set(CPACK_PACKAGE_VENDOR "YXTools")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "utility library for host applications, with the yxtools command")
set(CPACK_PACKAGE_DESCRIPTION
  "YXTools is a C++17 utility library that host applications load and call: hole management for binary files,\n\
files and paths, double-byte-safe strings, regional number and date formats, calendar arithmetic, an error\n\
log and a trace channel, registry parameters, locks and threads, memory tools and name provider registries.\n\
The package holds the shared library, its headers, its CMake package and pkg-config file, and the yxtools\n\
command for trying the library from a shell.")
set(CPACK_PACKAGE_CONTACT "YXTools developers <dev@yxtools.invalid>")
set(CPACK_PACKAGING_INSTALL_PREFIX ${CMAKE_INSTALL_PREFIX})
set(CPACK_STRIP_FILES ON)

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT) # yxtools_<version>_<architecture>.deb
set(CPACK_DEBIAN_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# The command loads the library of this very package: dpkg-shlibdeps finds it here rather than in
# another package.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR}/lib)
# A shlibs file and the ldconfig trigger, as for any Debian library package.
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")

include(CPack)
