# 32-bit Windows, compiled by MinGW on Linux and run there by Wine. Doubles are SSE2 doubles, as everywhere.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR i686)
set(CMAKE_C_COMPILER i686-w64-mingw32-gcc-posix)
set(CMAKE_CXX_COMPILER i686-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER i686-w64-mingw32-windres)
set(CMAKE_C_FLAGS_INIT "-march=pentium4 -msse2 -mfpmath=sse -mstackrealign -D_WIN32_WINNT=0x0501 -D_WIN32_IE=0x0600")
set(CMAKE_CXX_FLAGS_INIT "${CMAKE_C_FLAGS_INIT} -DNOMINMAX")
set(CMAKE_RC_FLAGS_INIT "-c 65001")
set(CMAKE_EXE_LINKER_FLAGS_INIT "-static")
set(CMAKE_SHARED_LINKER_FLAGS_INIT "-static")
# Programs need nothing beside them.
set(ZLIB_USE_STATIC_LIBS ON)
set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/../tools/wine-run)
# The picture libraries that tools/setup builds come before what the compiler's own packages bring.
if(NOT LUMAFOLD_WINDOWS_LIBRARIES)
    execute_process(COMMAND ${CMAKE_CURRENT_LIST_DIR}/../tools/libraries windows --where
        OUTPUT_VARIABLE LUMAFOLD_WINDOWS_LIBRARIES OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
endif()
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES LUMAFOLD_WINDOWS_LIBRARIES)
set(CMAKE_FIND_ROOT_PATH ${LUMAFOLD_WINDOWS_LIBRARIES} /usr/i686-w64-mingw32)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
