# How a component declares its tests. Every test is an entry of ctest's own, so that `./kaz test NAME` finds it, and
# runs in a process of its own: the plugin's records and caches are filled once and for good.
include(GoogleTest)

set(KAZ_TEST_ENVIRONMENT "KAZ_PHOTOS=${PROJECT_SOURCE_DIR}/.kaz/photos")

# kaz_tests(NAME [POOL] SOURCES file... LIBRARIES target... [TIMEOUT seconds])
# A GoogleTest program NAME, whose tests are called NAME.Suite.Test. POOL runs them inside an autorelease pool.
function(kaz_tests name)
  if(NOT BUILD_TESTING)
    return()
  endif()
  cmake_parse_arguments(arg "POOL" "TIMEOUT" "SOURCES;LIBRARIES" ${ARGN})
  if(NOT arg_TIMEOUT)
    set(arg_TIMEOUT 120)
  endif()
  add_executable(${name} ${arg_SOURCES})
  target_link_libraries(${name} PRIVATE ${arg_LIBRARIES} gtest)
  if(arg_POOL)
    target_sources(${name} PRIVATE "${PROJECT_SOURCE_DIR}/tests/support/main.mm")
  else()
    if(NOT TARGET kaz_test_main)
      add_library(kaz_test_main STATIC "${PROJECT_SOURCE_DIR}/tests/support/main.cpp")
      target_link_libraries(kaz_test_main PUBLIC gtest)
    endif()
    target_link_libraries(${name} PRIVATE kaz_test_main)
  endif()
  gtest_discover_tests(${name} TEST_PREFIX "${name}." DISCOVERY_MODE PRE_TEST DISCOVERY_TIMEOUT 60
    PROPERTIES ENVIRONMENT "${KAZ_TEST_ENVIRONMENT}" TIMEOUT ${arg_TIMEOUT})
endfunction()

# kaz_program_tests(NAME PROGRAM.rbs [OPTIONS option...] [TIMEOUT seconds])
# Every Sub of the program whose name begins with Test, called NAME.Sub. Each runs in a process and a folder of its
# own; the options are the studio's.
function(kaz_program_tests name program)
  if(NOT BUILD_TESTING)
    return()
  endif()
  cmake_parse_arguments(arg "" "TIMEOUT" "OPTIONS" ${ARGN})
  if(NOT arg_TIMEOUT)
    set(arg_TIMEOUT 120)
  endif()
  # The names are read from the text, so a new Sub configures anew.
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${program}")
  file(STRINGS "${program}" lines REGEX "^[ \t]*[Ss][Uu][Bb][ \t]+[Tt][Ee][Ss][Tt][A-Za-z0-9_]")
  foreach(line IN LISTS lines)
    string(REGEX REPLACE "^[ \t]*[A-Za-z]+[ \t]+([A-Za-z0-9_]+).*$" "\\1" sub "${line}")
    set(folder "${CMAKE_CURRENT_BINARY_DIR}/programs/${name}/${sub}")
    file(MAKE_DIRECTORY "${folder}")
    add_test(NAME ${name}.${sub} COMMAND studio ${arg_OPTIONS} --only ${sub} "${program}"
      WORKING_DIRECTORY "${folder}")
    set_tests_properties(${name}.${sub} PROPERTIES ENVIRONMENT "${KAZ_TEST_ENVIRONMENT}" TIMEOUT ${arg_TIMEOUT})
  endforeach()
endfunction()

# kaz_host_tests(NAME SOURCES file... LIBRARIES target...)
# Likewise in the studio's host: the tests may load the plugin and its family, at KAZ_PLUGIN and KAZ_FAMILY.
function(kaz_host_tests name)
  if(NOT BUILD_TESTING)
    return()
  endif()
  cmake_parse_arguments(arg "" "" "SOURCES;LIBRARIES" ${ARGN})
  kaz_tests(${name} SOURCES ${arg_SOURCES} LIBRARIES ${arg_LIBRARIES} studio_host)
  target_compile_definitions(${name} PRIVATE
    KAZ_PLUGIN="$<TARGET_FILE:CoreImageKaz>"
    KAZ_FAMILY="$<TARGET_FILE:FamilyKaz>")
  add_dependencies(${name} CoreImageKaz FamilyKaz)
endfunction()
