# Warnings every target of the project is built with.
function(yxtools_warnings target)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wshadow -Wno-unused-parameter)
endfunction()

# Adds every subfolder of the current source folder that has a CMakeLists.txt: each family brings
# its own folder of tests or benchmarks without editing a shared list.
function(yxtools_add_family_folders)
  file(GLOB folders LIST_DIRECTORIES true ${CMAKE_CURRENT_SOURCE_DIR}/*)
  foreach(folder IN LISTS folders)
    if(IS_DIRECTORY ${folder} AND EXISTS ${folder}/CMakeLists.txt)
      add_subdirectory(${folder})
    endif()
  endforeach()
endfunction()
