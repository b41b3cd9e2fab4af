# Compile settings of everything that is built here. None of them reaches a user of the installed library.
add_library(kvbase_settings INTERFACE)

target_compile_features(kvbase_settings INTERFACE cxx_std_20)
if(MSVC)
  # Not tried yet. /EHs: functions with C linkage may throw.
  target_compile_options(kvbase_settings INTERFACE /W4 /EHs /fp:precise /utf-8 $<$<BOOL:${KVBASE_WERROR}>:/WX>)
else()
  # Rounding is part of the results: no contraction, no fast-math anywhere.
  target_compile_options(kvbase_settings INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion $<$<BOOL:${KVBASE_WERROR}>:-Werror>
    # GCC 12 sees operands overlap where texts are joined (its bug 105651).
    $<$<AND:$<CXX_COMPILER_ID:GNU>,$<VERSION_LESS:$<CXX_COMPILER_VERSION>,13>>:-Wno-restrict>
    -ffp-contract=off "-fmacro-prefix-map=${PROJECT_SOURCE_DIR}/=")
endif()
if(KVBASE_FIXED_STAMP)
  target_compile_definitions(kvbase_settings INTERFACE "KV_SOURCE_STAMP=\"${KVBASE_FIXED_STAMP}\"")
endif()
if(KVBASE_SANITIZE)
  target_compile_options(kvbase_settings INTERFACE
    -fsanitize=${KVBASE_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all
    # GCC's own headers set this one off when they are instrumented.
    $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
  target_link_options(kvbase_settings INTERFACE -fsanitize=${KVBASE_SANITIZE})
endif()

# Programs find the library, and the library its modules, in one folder of the build tree.
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/bin)
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/bin)
