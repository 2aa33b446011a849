# Cross-compiles the engine and korvel-cli for 64-bit Windows from Debian
# (packages g++-mingw-w64-x86-64-posix, and wine64 to run the build-time
# tools), so the Windows code paths are compiled and can be smoke-tested:
#   cmake -B build-win -G Ninja -DCMAKE_TOOLCHAIN_FILE=cmake/mingw-w64.cmake \
#         -DKORVEL_GUI=OFF -DKORVEL_TESTS=OFF -DKORVEL_WERROR=ON
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(CMAKE_C_COMPILER x86_64-w64-mingw32-gcc-posix)
set(CMAKE_CXX_COMPILER x86_64-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)
set(CMAKE_FIND_ROOT_PATH /usr/x86_64-w64-mingw32)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
# One self-contained .exe: no MinGW runtime DLLs to carry around.
set(CMAKE_EXE_LINKER_FLAGS_INIT "-static")
find_program(KORVEL_WINE NAMES wine wine64 PATHS /usr/lib/wine)
if(KORVEL_WINE)
  set(CMAKE_CROSSCOMPILING_EMULATOR ${KORVEL_WINE})
endif()
