# What ./kaz-clang passes to the compiler so that programs are compiled, linked and started as the project's own are: a
# response file beside the build, and the target `platform`, which builds what such a program links.
set(frameworks AppKit QuartzCore CIDetection ImageIO CoreGraphics Carbon CoreFoundation dispatch)
add_custom_target(platform DEPENDS ${frameworks} ApplicationServices)

set(includes "")
set(libraries "")
foreach(framework IN LISTS frameworks)
  list(APPEND includes "$<TARGET_PROPERTY:${framework},INTERFACE_INCLUDE_DIRECTORIES>")
  list(APPEND libraries "$<TARGET_LINKER_FILE:${framework}>")
endforeach()

# Libraries are found where they were built, wherever the program lies.
string(REPLACE "$ORIGIN/${sysroot}" "${CMAKE_SYSROOT}" run_path "${CMAKE_BUILD_RPATH}")
string(REPLACE "$ORIGIN/.." "${CMAKE_BINARY_DIR}" run_path "${run_path}")
list(PREPEND run_path "${CMAKE_LIBRARY_OUTPUT_DIRECTORY}")
get_directory_property(link_options LINK_OPTIONS)

# Options are left unused by a compilation that does not link, and by C. Of the libraries, those are linked that the
# program uses, and always the Foundation, whose amendments to GNUstep no program asks for by name.
file(GENERATE OUTPUT "${CMAKE_BINARY_DIR}/clang.flags" CONTENT "--start-no-unused-arguments
--target=${CMAKE_OBJC_COMPILER_TARGET} \"--sysroot=${CMAKE_SYSROOT}\" ${CMAKE_OBJC_FLAGS}
\"-I$<JOIN:$<REMOVE_DUPLICATES:${includes}>,\" \"-I>\"
${CMAKE_EXE_LINKER_FLAGS} $<JOIN:${link_options}, >
\"-Wl,-rpath,$<JOIN:${run_path},\" \"-Wl,-rpath,>\"
\"-L$<JOIN:$<TARGET_PROPERTY:Foundation,INTERFACE_LINK_DIRECTORIES>,\" \"-L>\"
-x none -Wl,--as-needed \"$<JOIN:${libraries},\" \">\"
-Wl,--push-state,--no-as-needed \"$<TARGET_LINKER_FILE:Foundation>\" -Wl,--pop-state
-lgnustep-base -lobjc -lstdc++ -lm
--end-no-unused-arguments
")
