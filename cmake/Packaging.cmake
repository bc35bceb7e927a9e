# The Debian packages evox-sinar (client) and evox-server, made by cpack; packaging/debian/build does it all.

# The time of the release is that of its last commit, so that the same sources give the same packages.
if(DEFINED ENV{SOURCE_DATE_EPOCH})
    set(EVOX_SOURCE_TIME $ENV{SOURCE_DATE_EPOCH})
else()
    execute_process(COMMAND git log -1 --format=%ct WORKING_DIRECTORY ${CMAKE_SOURCE_DIR}
                    OUTPUT_VARIABLE EVOX_SOURCE_TIME OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET)
    if(NOT EVOX_SOURCE_TIME)
        string(TIMESTAMP EVOX_SOURCE_TIME "%s" UTC)
    endif()
    set(ENV{SOURCE_DATE_EPOCH} ${EVOX_SOURCE_TIME})
endif()
string(TIMESTAMP EVOX_RELEASE_DAY "%Y-%m-%d" UTC)
string(TIMESTAMP EVOX_RELEASE_TIME "%a, %d %b %Y %H:%M:%S +0000" UTC)
add_subdirectory(${CMAKE_SOURCE_DIR}/packaging/debian)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME ${PROJECT_NAME})
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "") # each package has its own
set(CPACK_PACKAGE_CONTACT "${EVOX_MAINTAINER}")
set(CPACK_PACKAGE_HOMEPAGE_URL "${EVOX_WEB_URL}")
set(CPACK_PACKAGE_DIRECTORY ${CMAKE_BINARY_DIR}/dist)
set(CPACK_PACKAGE_CHECKSUM SHA256)
set(CPACK_STRIP_FILES ON)
set(CPACK_SET_DESTDIR ON) # for the files in /etc and /lib
set(CPACK_INSTALL_PREFIX /usr)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_COMPONENTS_ALL client server)
set(CPACK_DEB_COMPONENT_INSTALL ON)
if(EVOX_RELEASE AND EVOX_MAINTAINER MATCHES "developers@example\\.org")
    set(EVOX_PACKING_REFUSED "EVOX_MAINTAINER must name whom to write to for the packages of a release")
endif()
set(CPACK_PROJECT_CONFIG_FILE ${CMAKE_BINARY_DIR}/CPackProject.cmake)
configure_file(${CMAKE_SOURCE_DIR}/packaging/debian/CPackProject.cmake.in ${CPACK_PROJECT_CONFIG_FILE} @ONLY)
set(CPACK_PRE_BUILD_SCRIPTS ${CMAKE_SOURCE_DIR}/packaging/debian/FixStage.cmake)

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)

set(control ${CMAKE_SOURCE_DIR}/packaging/debian)
set(CPACK_DEBIAN_CLIENT_PACKAGE_NAME evox-sinar)
set(CPACK_DEBIAN_CLIENT_PACKAGE_SECTION hamradio)
set(CPACK_DEBIAN_CLIENT_DESCRIPTION "radio-over-IP gateway
e-VOX SINAR joins an amateur radio to a network room. What the radio receives
is captured by the sound card, compressed with Opus, enciphered and sent to
the room; what the room says is put on the air while the transmitter is keyed
over a serial port's modem lines.

It starts, reconnects, keys and unkeys without anyone there.")
# The codec and the cipher are loaded by name, the plug-ins by Qt: none of them is found in the program.
set(CPACK_DEBIAN_CLIENT_PACKAGE_DEPENDS "libopus0, libqt5multimedia5-plugins, libqt5svg5, libsodium23")
set(CPACK_DEBIAN_CLIENT_PACKAGE_RECOMMENDS "pulseaudio | pipewire-pulse, xdg-utils")
set(CPACK_DEBIAN_CLIENT_PACKAGE_SUGGESTS "evox-server")
set(CPACK_DEBIAN_CLIENT_PACKAGE_CONTROL_EXTRA ${control}/client/postinst)

set(CPACK_DEBIAN_SERVER_PACKAGE_NAME evox-server)
set(CPACK_DEBIAN_SERVER_PACKAGE_SECTION hamradio)
set(CPACK_DEBIAN_SERVER_DESCRIPTION "server for a network of e-VOX SINAR gateways
evox-server keeps the accounts and rooms of an amateur radio club in one
SQLite file, and relays the enciphered audio of its rooms. It also serves
the registry and update pages that gateways ask for, and the operator's guide.")
set(CPACK_DEBIAN_SERVER_PACKAGE_DEPENDS "adduser, libqt5sql5-sqlite")
set(CPACK_DEBIAN_SERVER_PACKAGE_SUGGESTS "sqlite3")
set(CPACK_DEBIAN_SERVER_PACKAGE_CONTROL_EXTRA
    ${control}/server/conffiles ${control}/server/postinst ${control}/server/prerm ${control}/server/postrm)
include(CPack)
