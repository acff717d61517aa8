# Flags and warnings of all our targets, in one place.
# Flags of the Dev build type. Plain variables: project() has made empty cache entries of these names already.
set(CMAKE_CXX_FLAGS_DEV "-O1 -g1")
set(CMAKE_C_FLAGS_DEV "-O1 -g1")
if(NOT CMAKE_BUILD_TYPE AND NOT CMAKE_CONFIGURATION_TYPES)
  set(CMAKE_BUILD_TYPE Dev CACHE STRING "" FORCE)
endif()

# Every lock is watched for the order of locks, but in what is delivered.
option(KRS_CHECK_LOCKS "Watch the order in which locks are taken" ON)
if(KRS_CHECK_LOCKS AND CMAKE_BUILD_TYPE STREQUAL "Dev")
  add_compile_definitions(KRS_CHECK_LOCKS)
  add_link_options($<$<PLATFORM_ID:Linux>:-rdynamic>)  # names in the stacks of a report
endif()

# One picture on every machine: no fused multiply-add behind our back, nothing for the machine at hand.
add_compile_options(-ffp-contract=off)

add_library(krs_warnings INTERFACE)
target_compile_options(krs_warnings INTERFACE
  -Wall -Wextra -Wpedantic -Wconversion -Wsign-conversion -Wshadow -Wnon-virtual-dtor -Wold-style-cast
  -Wcast-qual -Wformat=2 -Werror)
if(CMAKE_CXX_COMPILER_ID MATCHES "Clang")
  # Overloads of one name on several bases are how the class interfaces look.
  target_compile_options(krs_warnings INTERFACE -Wno-overloaded-virtual)
endif()

if(KRS_SANITIZE)
  add_compile_options(-fsanitize=${KRS_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  add_link_options(-fsanitize=${KRS_SANITIZE})
endif()

find_program(KRS_CCACHE ccache)
if(KRS_CCACHE)
  # Precompiled headers are cached too.
  set(CMAKE_CXX_COMPILER_LAUNCHER ${CMAKE_COMMAND} -E env
      CCACHE_SLOPPINESS=pch_defines,time_macros,include_file_mtime,include_file_ctime ${KRS_CCACHE})
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    add_compile_options($<$<COMPILE_LANGUAGE:CXX>:-fpch-preprocess>)
  elseif(CMAKE_CXX_COMPILER_ID MATCHES "Clang")
    add_compile_options("$<$<COMPILE_LANGUAGE:CXX>:SHELL:-Xclang -fno-pch-timestamp>")
  endif()
endif()
