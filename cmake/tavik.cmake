# tavik_core_library(name SOURCES ... DEPS ...)
# A library of the plain C++ core. It must not see Qt: the check below fails the
# configure step when any of its sources includes a Qt header.
function(tavik_core_library name)
  cmake_parse_arguments(A "" "" "SOURCES;DEPS" ${ARGN})
  foreach(src ${A_SOURCES})
    file(READ ${CMAKE_CURRENT_SOURCE_DIR}/${src} text)
    if(text MATCHES "#include[ \t]*<Q[A-Za-z]*[>/]")
      message(FATAL_ERROR "${CMAKE_CURRENT_SOURCE_DIR}/${src} includes a Qt header; the core must not")
    endif()
  endforeach()
  add_library(${name} STATIC ${A_SOURCES})
  target_include_directories(${name} PUBLIC ${PROJECT_SOURCE_DIR})
  target_link_libraries(${name} PUBLIC ${A_DEPS})
endfunction()

# tavik_test(name SOURCES ... DEPS ...): one GoogleTest executable, registered with CTest.
function(tavik_test name)
  cmake_parse_arguments(A "" "" "SOURCES;DEPS;ENV" ${ARGN})
  add_executable(${name} ${A_SOURCES})
  target_link_libraries(${name} PRIVATE ${A_DEPS} GTest::gtest GTest::gtest_main GTest::gmock)
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR} ${PROJECT_SOURCE_DIR}/tests)
  target_compile_definitions(${name} PRIVATE TAVIK_TEST_DATA="${PROJECT_SOURCE_DIR}/tests/data"
                                             TAVIK_BIN_DIR="${PROJECT_BINARY_DIR}")
  gtest_discover_tests(${name} DISCOVERY_TIMEOUT 60 PROPERTIES ENVIRONMENT "QT_QPA_PLATFORM=offscreen;${A_ENV}")
endfunction()

# tavik_automoc_follow(target sources...): with Ninja, the automatic moc step of CMake
# 3.25 does not run again when a globbed folder gains a header (its dependency on the
# source list is order-only), so a new Q_OBJECT class links without its moc code. When
# the list differs from the one of the last configure, the step's stamp is removed so
# that the next build runs it.
function(tavik_automoc_follow target)
  set(list_file ${CMAKE_CURRENT_BINARY_DIR}/${target}_sources.txt)
  string(JOIN "\n" text ${ARGN})
  set(old "")
  if(EXISTS ${list_file})
    file(READ ${list_file} old)
  endif()
  if(NOT old STREQUAL text)
    file(WRITE ${list_file} "${text}")
    file(REMOVE ${CMAKE_CURRENT_BINARY_DIR}/${target}_autogen/timestamp)
  endif()
endfunction()
