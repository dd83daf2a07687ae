# SPDX-FileCopyrightText: Nightjar contributors
# SPDX-License-Identifier: Apache-2.0

# Flags that every target of ours is built with.
add_library(nightjar_flags INTERFACE)
target_include_directories(nightjar_flags INTERFACE ${PROJECT_SOURCE_DIR})
target_compile_options(nightjar_flags INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wnon-virtual-dtor -Woverloaded-virtual -Wimplicit-fallthrough
  $<$<BOOL:${NIGHTJAR_WARNINGS_AS_ERRORS}>:-Werror>)
if(NIGHTJAR_SANITIZERS)
  target_compile_options(nightjar_flags INTERFACE
    -fsanitize=${NIGHTJAR_SANITIZERS} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(nightjar_flags INTERFACE -fsanitize=${NIGHTJAR_SANITIZERS})
endif()

# nightjar_module(<name> SOURCES … HEADERS … LINKS … [QT])
# One static library per layer. Each header is also compiled alone (target all_verify_interface_header_sets).
function(nightjar_module name)
  cmake_parse_arguments(MODULE "QT" "" "SOURCES;HEADERS;LINKS;PRIVATE_LINKS" ${ARGN})
  add_library(${name} STATIC ${MODULE_SOURCES})
  target_sources(${name} PUBLIC FILE_SET HEADERS BASE_DIRS ${PROJECT_SOURCE_DIR} FILES ${MODULE_HEADERS})
  target_link_libraries(${name} PUBLIC nightjar_flags ${MODULE_LINKS} PRIVATE ${MODULE_PRIVATE_LINKS})
  set_target_properties(${name} PROPERTIES VERIFY_INTERFACE_HEADER_SETS ON)
  if(MODULE_QT)
    set_target_properties(${name} PROPERTIES AUTOMOC ON)
    target_compile_definitions(${name} PUBLIC QT_NO_KEYWORDS QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII)
  endif()
endfunction()

# nightjar_test(<name> SOURCES … LINKS … [LABELS …] [QT | WIDGETS] [COST …])
# QT runs it with an event loop, WIDGETS with windows that no screen shows. What waits for real time has a COST in
# seconds, so that it begins before the others.
function(nightjar_test name)
  cmake_parse_arguments(TEST "QT;WIDGETS" "COST" "SOURCES;LINKS;LABELS" ${ARGN})
  add_executable(${name} ${TEST_SOURCES})
  target_link_libraries(${name} PRIVATE nightjar_flags ${TEST_LINKS} GTest::gmock)
  set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/tests)
  if(TEST_QT OR TEST_WIDGETS)
    if(TEST_WIDGETS)
      target_sources(${name} PRIVATE ${PROJECT_SOURCE_DIR}/tests/support/WidgetTestMain.cpp)
      target_link_libraries(${name} PRIVATE nightjar_ui_kit Qt6::Test)
    else()
      target_sources(${name} PRIVATE ${PROJECT_SOURCE_DIR}/tests/support/QtTestMain.cpp)
      target_link_libraries(${name} PRIVATE Qt6::Core)
    endif()
    set_target_properties(${name} PROPERTIES AUTOMOC ON)
    target_compile_definitions(${name} PRIVATE QT_NO_KEYWORDS QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII)
  else()
    target_link_libraries(${name} PRIVATE GTest::gtest_main)
  endif()
  if(NIGHTJAR_SANITIZERS MATCHES "address")
    # What runs long is ours; the tests themselves take half the time to compile this way. (ThreadSanitizer would
    # misread the standard library's futures in them.)
    target_compile_options(${name} PRIVATE -O0)
  endif()
  set(properties TIMEOUT 120)
  if(TEST_LABELS)
    list(APPEND properties LABELS "${TEST_LABELS}")
  endif()
  if(TEST_COST)
    list(APPEND properties COST ${TEST_COST})
  endif()
  gtest_discover_tests(${name} DISCOVERY_TIMEOUT 60 PROPERTIES ${properties})

  # Of a list among those properties only the first element arrives: the environment is set once the names are known.
  set(environment "TZ=UTC;LC_ALL=C.UTF-8;TSAN_OPTIONS=suppressions=${PROJECT_SOURCE_DIR}/tests/tsan.supp:die_after_fork=0")
  set(environment_file ${CMAKE_CURRENT_BINARY_DIR}/${name}_environment.cmake)
  file(WRITE ${environment_file}
    "if(${name}_TESTS)\n  set_tests_properties(\${${name}_TESTS} PROPERTIES ENVIRONMENT \"${environment}\")\nendif()\n")
  set_property(DIRECTORY APPEND PROPERTY TEST_INCLUDE_FILES ${environment_file})
endfunction()
