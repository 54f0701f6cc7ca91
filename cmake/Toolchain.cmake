# Compiler and linker settings shared by every target: warnings, a fast linker, sanitizers.
include(CheckLinkerFlag)

add_compile_options(-Wall -Wextra -Wno-unused-parameter)

# lld links several times faster than bfd here; gold is the fallback.
check_linker_flag(CXX "-fuse-ld=lld" BXQ_HAVE_LLD)
if(BXQ_HAVE_LLD)
  add_link_options(-fuse-ld=lld)
else()
  check_linker_flag(CXX "-fuse-ld=gold" BXQ_HAVE_GOLD)
  if(BXQ_HAVE_GOLD)
    add_link_options(-fuse-ld=gold)
  endif()
endif()

set(BXQ_SANITIZE "" CACHE STRING "Sanitizers to build with, e.g. address,undefined")
if(BXQ_SANITIZE)
  add_compile_options(-fsanitize=${BXQ_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=undefined)
  add_link_options(-fsanitize=${BXQ_SANITIZE})
endif()
# Fuzzing: the library carries the coverage the fuzzer steers by; only the targets link its driver.
if(BXQ_BUILD_FUZZ)
  add_compile_options(-fsanitize=fuzzer-no-link)
endif()
