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
foreach(header IN LISTS FORBIDDEN)
  compile("${header}" code text)
  if(code EQUAL 0 OR NOT text MATCHES "'${header}' file not found")
    message(FATAL_ERROR "<${header}> must not be found from here. The compiler said:\n${text}")
  endif()
  message(STATUS "refused as it should be: <${header}>")
endforeach()
