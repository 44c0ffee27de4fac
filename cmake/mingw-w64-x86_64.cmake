# Cross-builds for 64-bit Windows with Debian's MinGW-w64 toolchain (the POSIX thread model,
# for std::thread). Libraries come from the prefix scripts/windows-deps.sh fills; programs
# run under Wine (tests through ctest's emulator, cmake/wine-run.sh).
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(CMAKE_C_COMPILER x86_64-w64-mingw32-gcc-posix)
set(CMAKE_CXX_COMPILER x86_64-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)

set(QV_WINDOWS_DEPS "${CMAKE_CURRENT_LIST_DIR}/../build-windows/deps" CACHE PATH
    "Where scripts/windows-deps.sh installed the Windows libraries")
set(CMAKE_FIND_ROOT_PATH /usr/x86_64-w64-mingw32 "${QV_WINDOWS_DEPS}")
set(CMAKE_PREFIX_PATH "${QV_WINDOWS_DEPS}")
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(CMAKE_CROSSCOMPILING_EMULATOR "${CMAKE_CURRENT_LIST_DIR}/wine-run.sh" CACHE FILEPATH
    "Runs the Windows programs (Wine, with one more start when Wine fails to start one)")
# pkg-config reads only the Windows libraries' files.
set(ENV{PKG_CONFIG_LIBDIR} "${QV_WINDOWS_DEPS}/lib/pkgconfig")
set(ENV{PKG_CONFIG_PATH} "")
