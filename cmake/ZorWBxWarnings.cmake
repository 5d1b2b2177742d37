# Compiler settings shared by every target of the project.
add_library(zorwbx_build_options INTERFACE)
target_compile_options(zorwbx_build_options INTERFACE -Wall -Wextra -Wpedantic)
if(ZORWBX_WERROR)
  target_compile_options(zorwbx_build_options INTERFACE -Werror)
endif()
if(ZORWBX_SANITIZE)
  # Any report ends the program with a failure: nothing is only printed.
  set(_zorwbx_san -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_compile_options(zorwbx_build_options INTERFACE ${_zorwbx_san})
  target_link_options(zorwbx_build_options INTERFACE ${_zorwbx_san})
endif()
if(ZORWBX_BUILD_FUZZ)
  if(NOT CMAKE_CXX_COMPILER_ID MATCHES "Clang")
    message(FATAL_ERROR "ZORWBX_BUILD_FUZZ needs clang (libFuzzer)")
  endif()
  # Coverage feedback for the fuzzer in every library it drives; the fuzz
  # targets themselves link libFuzzer's main.
  target_compile_options(zorwbx_build_options INTERFACE -fsanitize=fuzzer-no-link)
  target_link_options(zorwbx_build_options INTERFACE -fsanitize=fuzzer-no-link)
endif()
