# Windows programs by Debian's mingw-w64 with POSIX threads, everything linked statically.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(triplet x86_64-w64-mingw32)
set(CMAKE_C_COMPILER ${triplet}-gcc-posix)
set(CMAKE_CXX_COMPILER ${triplet}-g++-posix)
set(CMAKE_RC_COMPILER ${triplet}-windres)
set(CMAKE_AR ${triplet}-gcc-ar-posix)
set(CMAKE_RANLIB ${triplet}-gcc-ranlib-posix)

# Windows 10, whose API the program uses; UNICODE throughout.
set(CMAKE_C_FLAGS_INIT "-D_WIN32_WINNT=0x0A00 -DUNICODE -D_UNICODE")
set(CMAKE_CXX_FLAGS_INIT "${CMAKE_C_FLAGS_INIT}")
set(CMAKE_EXE_LINKER_FLAGS_INIT "-static -static-libgcc -static-libstdc++")

find_program(WINE wine)
if(WINE)
    set(CMAKE_CROSSCOMPILING_EMULATOR ${WINE})  # runs the tests
endif()

# Libraries and headers: the compiler's own and those of tools/build_windows_dependencies.sh, never the host's.
set(SKYLANTERN_WINDOWS_LIBRARIES "$ENV{SKYLANTERN_WINDOWS_LIBRARIES}" CACHE PATH
    "Folder printed by tools/build_windows_dependencies.sh")
set(CMAKE_FIND_ROOT_PATH /usr/${triplet} ${SKYLANTERN_WINDOWS_LIBRARIES} ${CMAKE_PREFIX_PATH})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(CMAKE_TRY_COMPILE_PLATFORM_VARIABLES SKYLANTERN_WINDOWS_LIBRARIES)
# pkg-config looks into that folder alone.
set(ENV{PKG_CONFIG_LIBDIR} "${SKYLANTERN_WINDOWS_LIBRARIES}/lib/pkgconfig")
set(ENV{PKG_CONFIG_PATH} "")
