# Flags of all our targets.
find_package(Threads REQUIRED)

add_library(project_options INTERFACE)
target_include_directories(project_options INTERFACE ${CMAKE_SOURCE_DIR})
target_link_libraries(project_options INTERFACE Threads::Threads)
target_compile_options(project_options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wold-style-cast -Wnon-virtual-dtor
  -Woverloaded-virtual -Wcast-align -Wformat=2 -Wundef -Werror)
# The same bytes in every build folder, without the paths of the building machine.
target_compile_options(project_options INTERFACE -ffile-prefix-map=${CMAKE_SOURCE_DIR}/=)
if(NOT VERNICOR_SANITIZE)  # g++ 12 sees null pointers in its own instrumented streams
  target_compile_options(project_options INTERFACE -Wnull-dereference)
endif()
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  target_compile_options(project_options INTERFACE -Wduplicated-cond -Wduplicated-branches -Wlogical-op)
  if(CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
    # False warnings at -O3 about overlapping copies in a string's insert and concatenation.
    target_compile_options(project_options INTERFACE -Wno-restrict)
  endif()
  if(CMAKE_SYSTEM_PROCESSOR STREQUAL "arm")
    target_compile_options(project_options INTERFACE -Wno-psabi)  # only reports what older compilers did
  endif()
else()
  target_compile_options(project_options INTERFACE -Wthread-safety)
endif()

# The shipped program contains the few functions of the C++ library that it needs, and binds all calls at its start, not
# by each thread on its stack. libgcc_s stays shared, because pthread_exit loads it. Sanitizers need shared libraries.
add_library(product_options INTERFACE)
if(NOT VERNICOR_SANITIZE AND NOT VERNICOR_COVERAGE)
  target_link_options(product_options INTERFACE -static-libstdc++ -Wl,--gc-sections -Wl,-z,now)
endif()

# The board comes between the sanitizers' runtime and libc, so it is never built with one.
add_library(sanitizer_options INTERFACE)
if(VERNICOR_SANITIZE)
  target_compile_options(sanitizer_options INTERFACE
    -fsanitize=${VERNICOR_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(sanitizer_options INTERFACE -fsanitize=${VERNICOR_SANITIZE})
endif()

# Counters of lines and branches, safe for threads, written at the end of a program. The board has none.
if(VERNICOR_COVERAGE)
  target_compile_options(sanitizer_options INTERFACE --coverage -fprofile-update=atomic)
  target_link_options(sanitizer_options INTERFACE --coverage)
endif()

# Only the tested code is optimized and checked for undefined behavior: without, the tests compile three times as fast.
add_library(test_options INTERFACE)
target_compile_options(test_options INTERFACE -O0 -fno-sanitize=undefined)

# What has to be preloaded before the board if the product is built with the address sanitizer: "" or "PATH:".
set(SANITIZER_RUNTIME "")
if(VERNICOR_SANITIZE MATCHES "address" AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=libasan.so
                  OUTPUT_VARIABLE SANITIZER_RUNTIME OUTPUT_STRIP_TRAILING_WHITESPACE)
  string(APPEND SANITIZER_RUNTIME ":")
endif()
