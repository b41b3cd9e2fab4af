# What only a build for Windows has: resources, and the run-time library beside the programs.
enable_language(RC)

# Numbers and texts of the version resource, and the manifest by which kvtool's arguments come in UTF-8.
configure_file(${PROJECT_SOURCE_DIR}/cmake/kvbase.rc.in ${PROJECT_BINARY_DIR}/kvbase.rc @ONLY)
configure_file(${PROJECT_SOURCE_DIR}/cmake/kvtool.rc.in ${PROJECT_BINARY_DIR}/kvtool.rc @ONLY)

# The compiler's own libraries stay shared: with static ones an exception can't be passed on between modules.
if(MINGW)
  set(KVBASE_RUNTIME_LIBRARIES "")
  foreach(name libstdc++-6.dll libgcc_s_seh-1.dll libwinpthread-1.dll)
    execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=${name}
                    OUTPUT_VARIABLE file OUTPUT_STRIP_TRAILING_WHITESPACE)
    if(NOT EXISTS ${file})  # some distributions keep them beside the compiler
      cmake_path(GET CMAKE_CXX_COMPILER PARENT_PATH folder)
      set(file ${folder}/${name})
    endif()
    configure_file(${file} ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/${name} COPYONLY)
    list(APPEND KVBASE_RUNTIME_LIBRARIES ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/${name})
  endforeach()
  install(FILES ${KVBASE_RUNTIME_LIBRARIES} DESTINATION ${CMAKE_INSTALL_BINDIR})
endif()
