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
    target_link_libraries(${name} PRIVATE gtest_main)
  endif()
  gtest_discover_tests(${name} TEST_PREFIX "${name}." DISCOVERY_MODE PRE_TEST DISCOVERY_TIMEOUT 60
    PROPERTIES ENVIRONMENT "${KAZ_TEST_ENVIRONMENT}" TIMEOUT ${arg_TIMEOUT})
endfunction()

# kaz_host_tests(NAME SOURCES file... LIBRARIES target...)
# Likewise in the studio's host: the tests may load the plugin and its family, at KAZ_PLUGIN and KAZ_FAMILY.
function(kaz_host_tests name)
  if(NOT BUILD_TESTING)
    return()
  endif()
  cmake_parse_arguments(arg "" "" "SOURCES;LIBRARIES" ${ARGN})
  kaz_tests(${name} SOURCES ${arg_SOURCES} LIBRARIES ${arg_LIBRARIES} studio_runtime)
  target_compile_definitions(${name} PRIVATE
    KAZ_PLUGIN="$<TARGET_FILE:CoreImageKaz>"
    KAZ_FAMILY="$<TARGET_FILE:FamilyKaz>")
  add_dependencies(${name} CoreImageKaz FamilyKaz)
endfunction()
