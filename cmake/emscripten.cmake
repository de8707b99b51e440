# WebAssembly by the distribution's emscripten, its tests run by node. Vectors are those of SSE2, which the compiler
# turns into WebAssembly's own.
include(/usr/share/emscripten/cmake/Modules/Platform/Emscripten.cmake)
set(CMAKE_C_FLAGS_INIT "-msimd128 -msse2 -ffp-contract=off")
set(CMAKE_CXX_FLAGS_INIT "${CMAKE_C_FLAGS_INIT} -fexceptions -include ${CMAKE_CURRENT_LIST_DIR}/emscripten_library.h")
# Where the linker's helpers are.
set(CMAKE_C_LINKER_LAUNCHER env NODE_PATH=/usr/share/nodejs)
set(CMAKE_CXX_LINKER_LAUNCHER ${CMAKE_C_LINKER_LAUNCHER})
# Memory grows to what an engine in a 32-bit process may take. A fetch of node's own makes the loader take it for a
# browser.
set(CMAKE_EXE_LINKER_FLAGS_INIT "-fexceptions -sALLOW_MEMORY_GROWTH=1 -sMAXIMUM_MEMORY=2GB")
set(CMAKE_CROSSCOMPILING_EMULATOR node --no-experimental-fetch)
# The picture libraries that tools/setup builds are the only ones there are.
if(NOT LUMAFOLD_WEB_LIBRARIES)
    execute_process(COMMAND ${CMAKE_CURRENT_LIST_DIR}/../tools/libraries web --where
        OUTPUT_VARIABLE LUMAFOLD_WEB_LIBRARIES OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
endif()
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES LUMAFOLD_WEB_LIBRARIES)
list(PREPEND CMAKE_FIND_ROOT_PATH ${LUMAFOLD_WEB_LIBRARIES})
list(PREPEND CMAKE_PREFIX_PATH ${LUMAFOLD_WEB_LIBRARIES})
