# kora_module(NAME DEPS <targets...>): one static library per module folder,
# built from every .cpp beside the CMakeLists that calls it.
function(kora_module name)
  cmake_parse_arguments(ARG "" "" "DEPS" ${ARGN})
  file(GLOB _sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.cpp ${CMAKE_CURRENT_SOURCE_DIR}/*.h)
  if(NOT _sources MATCHES "\\.cpp")
    # A module whose code has not landed yet still gives its dependants a target.
    add_library(${name} INTERFACE)
    target_include_directories(${name} INTERFACE ${CMAKE_CURRENT_SOURCE_DIR})
    target_link_libraries(${name} INTERFACE ${ARG_DEPS})
    return()
  endif()
  add_library(${name} STATIC ${_sources})
  target_include_directories(${name} PUBLIC ${CMAKE_CURRENT_SOURCE_DIR})
  target_link_libraries(${name} PUBLIC ${ARG_DEPS})
  target_compile_options(${name} PRIVATE -Wall -Wextra)
endfunction()

# Sanitizer options of the tests in a Sanitize build. halt_on_error: a finding
# fails its test instead of scrolling past. Leaks are checked in every test
# binary but two kinds: those that open the test databases (kora_testdb), as
# the SQLite ODBC driver leaks on every connection and Qt unloads it before the
# check, so its allocations come from "<unknown module>" that no suppression can
# name; and those marked NO_LEAK_CHECK, whose widgets make Qt 6.4 keep event
# and accessibility data to the end that the fast unwinder cannot attribute.
# To look for leaks there by hand: ASAN_OPTIONS=detect_leaks=1:fast_unwind_on_malloc=0.
set(KORA_SANITIZER_ENVIRONMENT "UBSAN_OPTIONS=halt_on_error=1:print_stacktrace=1")
set(KORA_ASAN_OPTIONS "halt_on_error=1:detect_stack_use_after_return=1")

# kora_test(NAME SOURCES <files...> DEPS <targets...> [NO_LEAK_CHECK]): one
# GoogleTest binary, registered with CTest. Qt GUI tests run on the offscreen
# platform.
function(kora_test name)
  cmake_parse_arguments(ARG "NO_LEAK_CHECK" "" "SOURCES;DEPS" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE ${ARG_DEPS} GTest::gtest GTest::gtest_main)
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR}/tests/support)
  target_compile_definitions(${name} PRIVATE
    KORA_FIXTURES_DIR="${PROJECT_SOURCE_DIR}/tests/fixtures"
    KORA_SOURCE_DIR="${PROJECT_SOURCE_DIR}")
  add_test(NAME ${name} COMMAND ${name})
  set_property(TEST ${name} PROPERTY ENVIRONMENT "QT_QPA_PLATFORM=offscreen")
  if(CMAKE_BUILD_TYPE STREQUAL "Sanitize")
    set(leaks 1)
    if(ARG_NO_LEAK_CHECK OR "kora_testdb" IN_LIST ARG_DEPS)
      set(leaks 0)
    endif()
    set_property(TEST ${name} APPEND PROPERTY ENVIRONMENT ${KORA_SANITIZER_ENVIRONMENT}
                 "ASAN_OPTIONS=${KORA_ASAN_OPTIONS}:detect_leaks=${leaks}")
  endif()
endfunction()
