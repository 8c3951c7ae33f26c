# Programs find their libraries from where they lie themselves, so that a package can hold the same files. CMake's own
# rpath leaves a name that ends in .framework out.
set(CMAKE_BUILD_RPATH_USE_ORIGIN ON)
file(RELATIVE_PATH sysroot "${CMAKE_RUNTIME_OUTPUT_DIRECTORY}" "${CMAKE_SYSROOT}")
set(CMAKE_BUILD_RPATH "$ORIGIN/../Frameworks/ApplicationServices.framework"
  "$ORIGIN/${sysroot}/lib/i386-linux-gnu" "$ORIGIN/${sysroot}/usr/lib/i386-linux-gnu" "$ORIGIN/${sysroot}/usr/lib")
