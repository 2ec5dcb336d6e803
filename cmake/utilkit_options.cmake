# Compiler settings shared by every target of the project.

if(UTILKIT_SANITIZE)
  add_compile_options(-fsanitize=address,undefined -fno-omit-frame-pointer
                      -fno-sanitize-recover=undefined)
  add_link_options(-fsanitize=address,undefined)
endif()

# Warnings for our own code only (third-party headers are included as system headers).
function(utilkit_warnings target)
  if(CMAKE_CXX_COMPILER_ID MATCHES "GNU|Clang")
    target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wno-unused-parameter)
    if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
      target_compile_options(${target} PRIVATE -Wshadow=local)
      # GCC 12 warns falsely of overlapping copies in `"text" + std::string(...)`
      # once inlined (GCC bug 105651, fixed in 13).
      if(CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
        target_compile_options(${target} PRIVATE -Wno-restrict)
      endif()
    endif()
    if(UTILKIT_WERROR)
      target_compile_options(${target} PRIVATE -Werror)
    endif()
  endif()
endfunction()
