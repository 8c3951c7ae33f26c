# Compiles one include at a time as a source of a target would, see CMakeLists.txt.
file(READ "${INCLUDES}" includes)
separate_arguments(options UNIX_COMMAND "${OPTIONS}")

function(compile header result output)
  file(WRITE "${SCRATCH}.mm" "#include <${header}>\n")
  execute_process(COMMAND "${COMPILER}" ${options} ${includes} -fsyntax-only "${SCRATCH}.mm"
    RESULT_VARIABLE code ERROR_VARIABLE text)
  set(${result} ${code} PARENT_SCOPE)
  set(${output} "${text}" PARENT_SCOPE)
endfunction()

compile("${ALLOWED}" code text)
if(NOT code EQUAL 0)
  message(FATAL_ERROR "<${ALLOWED}> must be found, but:\n${text}")
endif()
# One compile for all that must not be found; the allowed header shows above that the compiler looks in the right places.
set(text "")
foreach(header IN LISTS FORBIDDEN)
  string(APPEND text "#if __has_include(<${header}>)\n#error <${header}> must not be found from here\n#endif\n")
endforeach()
file(WRITE "${SCRATCH}.mm" "${text}")
execute_process(COMMAND "${COMPILER}" ${options} ${includes} -fsyntax-only "${SCRATCH}.mm"
  RESULT_VARIABLE code ERROR_VARIABLE text)
if(NOT code EQUAL 0)
  message(FATAL_ERROR "${text}")
endif()
