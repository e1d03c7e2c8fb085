# eventtimer_add_test(NAME SOURCES file... LIBRARIES lib...)
# One QtTest executable per test class, registered with CTest; runs headless and
# sees the test data folder through EVENTTIMER_FIXTURES_DIR.
function(eventtimer_add_test name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LIBRARIES" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE eventtimer_options Qt6::Test ${ARG_LIBRARIES})
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR}/tests/support)
  target_compile_definitions(${name} PRIVATE
    EVENTTIMER_FIXTURES_DIR="${EVENTTIMER_FIXTURES_DIR}")
  add_test(NAME ${name} COMMAND ${name})
  set_tests_properties(${name} PROPERTIES
    ENVIRONMENT "QT_QPA_PLATFORM=offscreen;ASAN_OPTIONS=detect_leaks=1;LSAN_OPTIONS=suppressions=${PROJECT_SOURCE_DIR}/tests/lsan.supp"
    TIMEOUT 120)
endfunction()
