# The Mac's side of the build: how the product is compiled there, and Apple's frameworks under the names that the
# platform's targets have elsewhere.
file(STRINGS "${PROJECT_SOURCE_DIR}/cmake/mac-flags.txt" lines REGEX "^-")
foreach(line IN LISTS lines)
  string(REGEX REPLACE " *#.*" "" flag "${line}")
  add_compile_options("${flag}")
endforeach()
add_compile_options("$<$<COMPILE_LANGUAGE:OBJCXX>:-fobjc-runtime=macosx-fragile-10.5>"
  "$<$<COMPILE_LANGUAGE:OBJCXX>:-fobjc-exceptions>")

# kaz_framework(NAME FRAMEWORK...): NAME links these frameworks.
function(kaz_framework name)
  add_library(${name} INTERFACE)
  foreach(framework IN LISTS ARGN)
    target_link_options(${name} INTERFACE "SHELL:-framework ${framework}")
  endforeach()
endfunction()
kaz_framework(Foundation Foundation)
kaz_framework(CoreFoundation CoreFoundation)
kaz_framework(AppKit AppKit)
kaz_framework(QuartzCore QuartzCore)
# Frameworks of their own since 10.8 only.
kaz_framework(CoreGraphics ApplicationServices)
kaz_framework(ImageIO ApplicationServices)
kaz_framework(Carbon CoreServices)
# Asked for at run time.
kaz_framework(dispatch)

# kaz_mac_plugin(NAME): a bundle that exports the entry alone and needs no run-time library of C++.
function(kaz_mac_plugin name)
  set_target_properties(${name} PROPERTIES BUNDLE TRUE)
  target_link_options(${name} PRIVATE -nodefaultlibs -Wl,-exported_symbol,_REALPluginMain)
  target_link_libraries(${name} PRIVATE -lSystem -lobjc)
endfunction()
