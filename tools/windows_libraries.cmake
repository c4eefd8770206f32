# The libraries of a Windows build under the names of the Linux build, out of the folder of
# tools/build_windows_dependencies.sh.
if(NOT SKYLANTERN_WINDOWS_LIBRARIES)
    message(FATAL_ERROR "SKYLANTERN_WINDOWS_LIBRARIES is not set: ./build-windows.sh shows how to build")
endif()
# No import library of a DLL stands for a static one.
set(CMAKE_FIND_LIBRARY_SUFFIXES .a)
find_package(fmt REQUIRED CONFIG)
find_package(nlohmann_json REQUIRED CONFIG)
find_package(pugixml REQUIRED CONFIG)
find_package(ZLIB REQUIRED)
find_package(libzip REQUIRED CONFIG)
find_package(CURL REQUIRED CONFIG)
find_library(SODIUM_LIBRARY libsodium.a REQUIRED)
find_path(SODIUM_INCLUDE sodium.h REQUIRED)

add_library(sodium_static STATIC IMPORTED)
set_target_properties(sodium_static PROPERTIES
    IMPORTED_LOCATION ${SODIUM_LIBRARY}
    INTERFACE_INCLUDE_DIRECTORIES ${SODIUM_INCLUDE}
    INTERFACE_COMPILE_DEFINITIONS SODIUM_STATIC=1)
set(skylantern_libraries CURL::libcurl sodium_static libzip::zip
    bcrypt ws2_32 crypt32 secur32 gdi32 user32 shell32 ole32 uuid winmm comctl32)
