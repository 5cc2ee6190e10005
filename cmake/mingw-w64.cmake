# Cross-build for 64-bit Windows. Programs are linked statically: they need nothing but Windows itself.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(MINGW x86_64-w64-mingw32)
# Where there are two kinds of threads, those of the standard library's own make.
find_program(MARNOTH_MINGW_C NAMES ${MINGW}-gcc-posix ${MINGW}-gcc REQUIRED)
find_program(MARNOTH_MINGW_CXX NAMES ${MINGW}-g++-posix ${MINGW}-g++ REQUIRED)
set(CMAKE_C_COMPILER ${MARNOTH_MINGW_C})
set(CMAKE_CXX_COMPILER ${MARNOTH_MINGW_CXX})
set(CMAKE_RC_COMPILER ${MINGW}-windres)
set(CMAKE_RC_FLAGS_INIT "-c 65001")
# The stack is aligned to 16 bytes, and not every version of the compiler knows that where it keeps wider registers
# there. Written as moves that take any address all its moves are right, and no slower.
set(CMAKE_C_FLAGS_INIT -Wa,-muse-unaligned-vector-move)
set(CMAKE_CXX_FLAGS_INIT -Wa,-muse-unaligned-vector-move)
set(CMAKE_FIND_ROOT_PATH /usr/${MINGW})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(CMAKE_EXE_LINKER_FLAGS_INIT "-static")
set(CMAKE_SHARED_LINKER_FLAGS_INIT "-static")
set(CMAKE_MODULE_LINKER_FLAGS_INIT "-static")
# Wine, with patience for the runs that it fails to start.
set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/wine-run)
