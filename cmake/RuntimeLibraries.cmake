# The client loads the codec and the cipher by file name when it runs. Off Windows the build puts links to the
# distribution's libraries where the client looks for them: bin/libs/.
if(UNIX AND NOT CMAKE_CROSSCOMPILING)
    find_library(EVOX_OPUS_LIBRARY NAMES libopus.so.0 opus REQUIRED)
    find_library(EVOX_SODIUM_LIBRARY NAMES libsodium.so.23 sodium REQUIRED)
    file(MAKE_DIRECTORY ${CMAKE_BINARY_DIR}/bin/libs)
    file(CREATE_LINK ${EVOX_OPUS_LIBRARY} ${CMAKE_BINARY_DIR}/bin/libs/libopus-0.so SYMBOLIC)
    file(CREATE_LINK ${EVOX_SODIUM_LIBRARY} ${CMAKE_BINARY_DIR}/bin/libs/libsodium.so SYMBOLIC)
endif()
