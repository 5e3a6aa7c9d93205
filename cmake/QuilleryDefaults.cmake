# Warning and sanitizer flags shared by every target of the project.
function(quillery_defaults target)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic
                                           $<$<CXX_COMPILER_ID:GNU>:-Wshadow=local>)
  if(QUILLERY_WERROR)
    target_compile_options(${target} PRIVATE -Werror)
  endif()
endfunction()

if(QUILLERY_SANITIZE)
  add_compile_options(-fsanitize=address,undefined -fno-omit-frame-pointer -fno-sanitize-recover=undefined)
  add_link_options(-fsanitize=address,undefined)
endif()
