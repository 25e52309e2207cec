# The `docs` target: the reference documentation of the public headers, built by Debian's doxygen
# into <build>/docs/html. Any Doxygen warning (an undocumented export included) fails the target.
find_program(YXTOOLS_DOXYGEN doxygen)
set(YXTOOLS_DOCS_OUTPUT ${PROJECT_BINARY_DIR}/docs)
configure_file(${PROJECT_SOURCE_DIR}/cmake/Doxyfile.in ${YXTOOLS_DOCS_OUTPUT}/Doxyfile @ONLY)
if(YXTOOLS_DOXYGEN)
  file(GLOB yxtools_doc_inputs CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/include/yxtools/*.h
       ${PROJECT_SOURCE_DIR}/docs/*.md)
  add_custom_command(
    OUTPUT ${YXTOOLS_DOCS_OUTPUT}/html/index.html
    COMMAND ${CMAKE_COMMAND} -E rm -rf ${YXTOOLS_DOCS_OUTPUT}/html
    COMMAND ${YXTOOLS_DOXYGEN} ${YXTOOLS_DOCS_OUTPUT}/Doxyfile
    DEPENDS ${yxtools_doc_inputs} ${YXTOOLS_DOCS_OUTPUT}/Doxyfile ${PROJECT_BINARY_DIR}/include/yxtools/version.h
    WORKING_DIRECTORY ${YXTOOLS_DOCS_OUTPUT}
    COMMENT "Reference documentation (doxygen) in ${YXTOOLS_DOCS_OUTPUT}/html"
    VERBATIM)
  add_custom_target(docs DEPENDS ${YXTOOLS_DOCS_OUTPUT}/html/index.html)
else()
  add_custom_target(docs COMMAND ${CMAKE_COMMAND} -E echo "doxygen is missing: scripts/install-deps.sh installs it"
                    COMMAND ${CMAKE_COMMAND} -E false)
endif()
