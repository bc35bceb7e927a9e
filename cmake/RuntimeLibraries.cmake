# The client loads the codec and the cipher by file name when it runs. The build puts them where the client looks for
# them, bin/libs/: off Windows as links to the distribution's libraries.
if(UNIX AND NOT CMAKE_CROSSCOMPILING)
    find_library(EVOX_OPUS_LIBRARY NAMES libopus.so.0 opus REQUIRED)
    find_library(EVOX_SODIUM_LIBRARY NAMES libsodium.so.23 sodium REQUIRED)
    file(MAKE_DIRECTORY ${CMAKE_BINARY_DIR}/bin/libs)
    file(CREATE_LINK ${EVOX_OPUS_LIBRARY} ${CMAKE_BINARY_DIR}/bin/libs/libopus-0.so SYMBOLIC)
    file(CREATE_LINK ${EVOX_SODIUM_LIBRARY} ${CMAKE_BINARY_DIR}/bin/libs/libsodium.so SYMBOLIC)
endif()

# EVOX_RUNTIME_FOLDER, or the toolchain's folder, has them in bin/ for Windows. A build without them gives a client that
# says at its start that the codec is missing.
if(WIN32)
    find_file(EVOX_OPUS_LIBRARY libopus-0.dll PATHS ${EVOX_RUNTIME_FOLDER} ${EVOX_WINDOWS_SDK_FOLDER}
              PATH_SUFFIXES bin NO_CMAKE_FIND_ROOT_PATH)
    find_file(EVOX_SODIUM_LIBRARY libsodium.dll PATHS ${EVOX_RUNTIME_FOLDER} ${EVOX_WINDOWS_SDK_FOLDER}
              PATH_SUFFIXES bin NO_CMAKE_FIND_ROOT_PATH)
    foreach(library ${EVOX_OPUS_LIBRARY} ${EVOX_SODIUM_LIBRARY})
        if(EXISTS ${library})
            file(COPY ${library} DESTINATION ${CMAKE_BINARY_DIR}/bin/libs)
        else()
            message(WARNING "${library}: set EVOX_RUNTIME_FOLDER to the folder of libopus-0.dll and libsodium.dll")
        endif()
    endforeach()
endif()
