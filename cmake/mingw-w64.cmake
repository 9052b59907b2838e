# Cross-compiling for 64-bit Windows with Debian's MinGW-w64 (the posix thread model), for
# scripts/windows_tests.sh. ORVO_MINGW_PREFIXES may name further prefixes to search (the
# GoogleTest built for Windows).
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_C_COMPILER x86_64-w64-mingw32-gcc-posix)
set(CMAKE_CXX_COMPILER x86_64-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)
set(CMAKE_FIND_ROOT_PATH /usr/x86_64-w64-mingw32 ${ORVO_MINGW_PREFIXES})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
# Static programs run under wine without the MinGW runtime DLLs beside them.
set(CMAKE_EXE_LINKER_FLAGS_INIT "-static")
