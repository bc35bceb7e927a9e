# The MinGW-w64 cross compiler of Debian and the Qt that packaging/windows/sdk makes for it.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(CMAKE_C_COMPILER x86_64-w64-mingw32-gcc-posix)
set(CMAKE_CXX_COMPILER x86_64-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)

# Found once: the checks that CMake compiles read this file again and are given the folder.
if(NOT EVOX_WINDOWS_SDK_FOLDER)
    execute_process(COMMAND ${CMAKE_CURRENT_LIST_DIR}/sdk --find
                    OUTPUT_VARIABLE EVOX_WINDOWS_SDK_FOLDER OUTPUT_STRIP_TRAILING_WHITESPACE
                    ERROR_VARIABLE evox_sdk_error RESULT_VARIABLE evox_sdk_result)
    if(NOT evox_sdk_result EQUAL 0)
        message(FATAL_ERROR "${evox_sdk_error}")
    endif()
endif()
set(EVOX_WINDOWS_SDK_FOLDER "${EVOX_WINDOWS_SDK_FOLDER}" CACHE PATH "Qt, the codec and the cipher for Windows")
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES EVOX_WINDOWS_SDK_FOLDER)

set(CMAKE_FIND_ROOT_PATH /usr/x86_64-w64-mingw32 "${EVOX_WINDOWS_SDK_FOLDER}")
list(PREPEND CMAKE_PREFIX_PATH "${EVOX_WINDOWS_SDK_FOLDER}")
# Programs are this computer's, everything else is the target's.
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# The tests run under Wine.
set(EVOX_WINE_RUN ${CMAKE_CURRENT_LIST_DIR}/wine-run)
set(CMAKE_CROSSCOMPILING_EMULATOR ${EVOX_WINE_RUN} ${CMAKE_BINARY_DIR})
