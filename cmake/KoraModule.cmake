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
# fails its test instead of scrolling past. No leak check: the SQLite ODBC
# driver leaks in every store test, and Qt unloads it before the check, so its
# allocations come from "<unknown module>" that no suppression can name (only
# the slow unwinder on every allocation would reach a frame to match). To look
# for leaks by hand: ASAN_OPTIONS=detect_leaks=1:fast_unwind_on_malloc=0.
set(KORA_SANITIZER_ENVIRONMENT "ASAN_OPTIONS=halt_on_error=1:detect_stack_use_after_return=1:detect_leaks=0"
                               "UBSAN_OPTIONS=halt_on_error=1:print_stacktrace=1")

# kora_test(NAME SOURCES <files...> DEPS <targets...>): one GoogleTest binary,
# registered with CTest. Qt GUI tests run on the offscreen platform.
function(kora_test name)
  cmake_parse_arguments(ARG "" "" "SOURCES;DEPS" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE ${ARG_DEPS} GTest::gtest GTest::gtest_main)
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR}/tests/support)
  target_compile_definitions(${name} PRIVATE
    KORA_FIXTURES_DIR="${PROJECT_SOURCE_DIR}/tests/fixtures"
    KORA_SOURCE_DIR="${PROJECT_SOURCE_DIR}")
  add_test(NAME ${name} COMMAND ${name})
  set_property(TEST ${name} PROPERTY ENVIRONMENT "QT_QPA_PLATFORM=offscreen")
  if(CMAKE_BUILD_TYPE STREQUAL "Sanitize")
    set_property(TEST ${name} APPEND PROPERTY ENVIRONMENT ${KORA_SANITIZER_ENVIRONMENT})
  endif()
endfunction()
