# Warnings every target of the project is built with.
function(yxtools_warnings target)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wshadow -Wno-unused-parameter)
endfunction()
