include(CMakeParseArguments)

# evox_add_library(folder SOURCES … LIBS …): the static library evox_<folder> of src/<folder>.
function(evox_add_library folder)
    cmake_parse_arguments(ARG "" "" "SOURCES;LIBS" ${ARGN})
    add_library(evox_${folder} STATIC ${ARG_SOURCES})
    target_include_directories(evox_${folder} PUBLIC ${CMAKE_SOURCE_DIR}/src)
    target_link_libraries(evox_${folder} PUBLIC ${ARG_LIBS})
    evox_warnings(evox_${folder})
endfunction()

# Everything that is no test.
add_custom_target(programs)

# evox_add_program(name SOURCES … LIBS …)
function(evox_add_program name)
    cmake_parse_arguments(ARG "" "" "SOURCES;LIBS" ${ARGN})
    add_executable(${name} ${ARG_SOURCES})
    target_include_directories(${name} PRIVATE ${CMAKE_SOURCE_DIR}/src)
    target_link_libraries(${name} PRIVATE ${ARG_LIBS})
    evox_warnings(${name})
    add_dependencies(programs ${name})
endfunction()

file(WRITE ${CMAKE_BINARY_DIR}/no-alsa.conf "# empty: hides every device\n")

set(EVOX_SIMSERIAL_FOR_WINE ${CMAKE_BINARY_DIR}/lib/libevox-simserial.so)

# tests-unit, tests-wire, tests-widget, tests-e2e: the test programs of one label.
foreach(label unit wire widget e2e)
    add_custom_target(tests-${label})
endforeach()

# evox_add_test(folder name [SOURCES …] [LIBS …] [LABEL unit|wire|widget|e2e] [SERIAL] [LONG] [TIMEOUT s]
#               [LINUX_ONLY why])
# The test program <name> of tests/<folder>/<name>.cpp, linked with evox_<folder> and the test kit.
# SERIAL preloads the modem-line shim, so that real QSerialPort code opens simulated ports; on Windows that is done
# under Wine only.
# LONG starts it before the others, so that nobody waits for it at the end.
# LINUX_ONLY leaves it out on Windows, and configuring says why.
function(evox_add_test folder name)
    cmake_parse_arguments(ARG "SERIAL;LONG" "LABEL;TIMEOUT;LINUX_ONLY" "SOURCES;LIBS" ${ARGN})
    if(ARG_SERIAL AND WIN32 AND NOT CMAKE_CROSSCOMPILING)
        set(ARG_LINUX_ONLY "simulates serial ports")
    endif()
    if(WIN32 AND ARG_LINUX_ONLY)
        set_property(GLOBAL APPEND PROPERTY EVOX_LEFT_OUT_TESTS "${name}: ${ARG_LINUX_ONLY}")
        return()
    endif()
    if(NOT ARG_LABEL)
        set(ARG_LABEL unit)
    endif()
    if(NOT ARG_TIMEOUT)
        set(ARG_TIMEOUT 180)
    endif()
    add_executable(${name} ${name}.cpp ${ARG_SOURCES})
    if(NOT ARG_SOURCES)
        # The one file is read at once; looking through all files takes ten times as long, for a hundred programs.
        set_target_properties(${name} PROPERTIES AUTOMOC OFF)
        qt5_generate_moc(${name}.cpp ${CMAKE_CURRENT_BINARY_DIR}/${name}.moc TARGET ${name})
        target_sources(${name} PRIVATE ${CMAKE_CURRENT_BINARY_DIR}/${name}.moc)
        target_include_directories(${name} PRIVATE ${CMAKE_CURRENT_BINARY_DIR})
    endif()
    target_include_directories(${name} PRIVATE ${CMAKE_SOURCE_DIR}/src ${CMAKE_SOURCE_DIR}/tests)
    if(TARGET evox_${folder})
        target_link_libraries(${name} PRIVATE evox_${folder})
    endif()
    if(folder STREQUAL "ui")
        target_link_libraries(${name} PRIVATE evox_testkit_ui)
    endif()
    target_link_libraries(${name} PRIVATE evox_testkit Qt5::Test ${ARG_LIBS})
    evox_warnings(${name})
    add_dependencies(tests-${ARG_LABEL} ${name})
    add_test(NAME ${name} COMMAND ${name})
    set(environment QT_QPA_PLATFORM=offscreen QT_LOGGING_RULES= LC_ALL=C.UTF-8
        EVOX_BUILD_DIR=${CMAKE_BINARY_DIR} ${EVOX_SANITIZER_ENVIRONMENT}
        # No sound daemon and no device of this machine: a test that needs sound brings its own daemon.
        PULSE_SERVER=unix:${CMAKE_BINARY_DIR}/no-sound-daemon ALSA_CONFIG_PATH=${CMAKE_BINARY_DIR}/no-alsa.conf)
    if(ARG_SERIAL AND WIN32)
        add_dependencies(${name} evox-simserial)
        set_target_properties(${name} PROPERTIES CROSSCOMPILING_EMULATOR
            "${EVOX_WINE_RUN};--serial;${EVOX_SIMSERIAL_FOR_WINE};${CMAKE_BINARY_DIR}")
    elseif(ARG_SERIAL)
        add_dependencies(${name} evox-simserial)
        list(APPEND environment "LD_PRELOAD=$<$<BOOL:${EVOX_LIBASAN}>:${EVOX_LIBASAN}:>$<TARGET_FILE:evox-simserial>")
    endif()
    set_tests_properties(${name} PROPERTIES
        LABELS ${ARG_LABEL} TIMEOUT ${ARG_TIMEOUT} ENVIRONMENT "${environment}" COST $<IF:$<BOOL:${ARG_LONG}>,2,1>)
endfunction()

# Says at the end of configuring which tests this system does not get.
function(evox_report_left_out_tests)
    get_property(left_out GLOBAL PROPERTY EVOX_LEFT_OUT_TESTS)
    foreach(test ${left_out})
        message(STATUS "Left out on Windows: ${test}")
    endforeach()
endfunction()
