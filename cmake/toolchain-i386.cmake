# Cross toolchain: clang + lld for 32-bit x86 Linux against the private sysroot that tools/setup.sh made.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR i686)

get_filename_component(KAZ_ROOT "${CMAKE_CURRENT_LIST_DIR}/.." ABSOLUTE)
set(CMAKE_SYSROOT "${KAZ_ROOT}/.kaz/sysroot")
if(NOT EXISTS "${CMAKE_SYSROOT}/usr/include/GNUstep")
  message(FATAL_ERROR "The i386 sysroot is missing at ${CMAKE_SYSROOT}. Run: ./kaz build")
endif()

foreach(lang C CXX OBJC OBJCXX)
  set(CMAKE_${lang}_COMPILER_TARGET i686-linux-gnu)
endforeach()
find_program(KAZ_CLANG clang NO_CMAKE_FIND_ROOT_PATH REQUIRED)
find_program(KAZ_CLANGXX clang++ NO_CMAKE_FIND_ROOT_PATH REQUIRED)
set(CMAKE_C_COMPILER "${KAZ_CLANG}")
set(CMAKE_CXX_COMPILER "${KAZ_CLANGXX}")
set(CMAKE_OBJC_COMPILER "${KAZ_CLANG}")
set(CMAKE_OBJCXX_COMPILER "${KAZ_CLANGXX}")

# SSE2 arithmetic: floats round as floats, and every Mac with this processor has it.
set(_kaz_arch "-msse2 -mfpmath=sse")
set(_kaz_objc "-fobjc-runtime=gcc -fobjc-exceptions -fexceptions -D_NATIVE_OBJC_EXCEPTIONS -DGNUSTEP -DGNUSTEP_BASE_LIBRARY=1 -DGNU_RUNTIME=1 -fconstant-string-class=NSConstantString -iwithsysroot /usr/include/GNUstep -iwithsysroot /usr/lib/gcc/i686-linux-gnu/12/include")
set(CMAKE_C_FLAGS_INIT "${_kaz_arch}")
set(CMAKE_CXX_FLAGS_INIT "${_kaz_arch}")
set(CMAKE_OBJC_FLAGS_INIT "${_kaz_arch} ${_kaz_objc}")
set(CMAKE_OBJCXX_FLAGS_INIT "${_kaz_arch} ${_kaz_objc}")

# Programs start with the sysroot's own loader, whose path is quoted for the shell. The old-style rpath applies to what
# libraries need, too.
string(REPLACE "'" "'\\''" _kaz_loader "${CMAKE_SYSROOT}/lib/ld-linux.so.2")
set(_kaz_linking "-fuse-ld=lld -Wl,--disable-new-dtags")
set(CMAKE_EXE_LINKER_FLAGS_INIT "${_kaz_linking} -Xlinker '--dynamic-linker=${_kaz_loader}'")
set(CMAKE_SHARED_LINKER_FLAGS_INIT "${_kaz_linking} -Wl,-z,defs")
set(CMAKE_MODULE_LINKER_FLAGS_INIT "${CMAKE_SHARED_LINKER_FLAGS_INIT}")

set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# CMake knows these for C and C++ on Linux, but not for the Objective languages.
foreach(lang OBJC OBJCXX)
  set(CMAKE_SHARED_LIBRARY_SONAME_${lang}_FLAG "-Wl,-soname,")
  set(CMAKE_SHARED_LIBRARY_RUNTIME_${lang}_FLAG "-Wl,-rpath,")
  set(CMAKE_SHARED_LIBRARY_RUNTIME_${lang}_FLAG_SEP ":")
  set(CMAKE_EXECUTABLE_RUNTIME_${lang}_FLAG "-Wl,-rpath,")
  set(CMAKE_EXECUTABLE_RUNTIME_${lang}_FLAG_SEP ":")
endforeach()
