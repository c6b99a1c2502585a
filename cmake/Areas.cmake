# add_area(NAME FOLDER [lower areas]): one static library from every source below FOLDER. Presets with unity builds compile
# the sources of one folder together.
function(add_area name folder)
  file(GLOB_RECURSE sources CONFIGURE_DEPENDS ${folder}/*.cpp)
  list(FILTER sources EXCLUDE REGEX "/Main\\.cpp$")
  if(sources)
    add_library(${name} STATIC ${sources})
    set_target_properties(${name} PROPERTIES UNITY_BUILD_MODE GROUP)
    foreach(source IN LISTS sources)
      cmake_path(GET source PARENT_PATH parent)
      cmake_path(GET parent FILENAME group)
      set_source_files_properties(${source} PROPERTIES UNITY_GROUP ${group})
    endforeach()
    target_link_libraries(${name} PUBLIC project_options sanitizer_options ${ARGN})
  else()
    add_library(${name} INTERFACE)
    target_link_libraries(${name} INTERFACE project_options sanitizer_options ${ARGN})
  endif()
endfunction()

# Precompiles what every test includes, which is half of a test's compile time.
function(add_test_headers)
  file(CONFIGURE OUTPUT ${CMAKE_CURRENT_BINARY_DIR}/TestHeaders.cpp CONTENT "// The headers that all tests share.\n")
  add_library(test_headers OBJECT ${CMAKE_CURRENT_BINARY_DIR}/TestHeaders.cpp)
  target_link_libraries(test_headers PRIVATE project_options sanitizer_options test_options
                        GTest::gtest GTest::gmock GTest::gtest_main)
  target_precompile_headers(test_headers PRIVATE <gmock/gmock.h> <gtest/gtest.h> <algorithm> <filesystem> <fstream>
                            <functional> <map> <memory> <string> <vector>)
endfunction()

# The test programs with the label "units": those of the product's own layers. The others test controllers that start
# programs, and the links, with which the whole analyzer works with all its threads.
add_custom_target(unit-tests)
set(UNITS "^(Frameworks|Drivers|System/(Messages|MeasurementEngine|SystemMonitor|LoggingControl|DeviceMonitor)$)")

# add_area_tests(NAME FOLDER [libraries] [NATIVE_ONLY tests]): one test program from every source in FOLDER. Name the board
# last among the libraries, so that it comes between the program and libc. The NATIVE_ONLY tests get the label "native".
function(add_area_tests name folder)
  file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/${folder}/*.cpp)
  if(NOT sources)
    return()
  endif()
  cmake_parse_arguments(PARSE_ARGV 2 arg "" "" NATIVE_ONLY)
  set(libraries ${arg_UNPARSED_ARGUMENTS})
  add_executable(${name} ${sources})
  target_link_libraries(${name} PRIVATE project_options sanitizer_options test_options ${libraries}
                        GTest::gtest GTest::gmock GTest::gtest_main)
  target_compile_definitions(${name} PRIVATE SOURCE_FOLDER="${CMAKE_SOURCE_DIR}" BINARY_FOLDER="${CMAKE_BINARY_DIR}"
                             CLIPS_FOLDER="${CLIPS_FOLDER}"
                             SANITIZER_RUNTIME="${SANITIZER_RUNTIME}")
  target_precompile_headers(${name} REUSE_FROM test_headers)
  add_dependencies(${name} clips)
  set(label whole)
  if(folder MATCHES ${UNITS})
    set(label units)
    add_dependencies(unit-tests ${name})
  endif()
  set(others "*")
  if(arg_NATIVE_ONLY)
    list(JOIN arg_NATIVE_ONLY ":" native)
    set(others "-${native}")
    gtest_discover_tests(${name} DISCOVERY_TIMEOUT 300 TEST_FILTER ${native} TEST_LIST ${name}_native
                         PROPERTIES TIMEOUT 300 LABELS native)
  endif()
  gtest_discover_tests(${name} DISCOVERY_TIMEOUT 300 TEST_FILTER ${others} PROPERTIES TIMEOUT 300 LABELS ${label})
  if("board" IN_LIST libraries)
    add_dependencies(${name} bench-tools)
  endif()
endfunction()
