# EVOX_PRECOMPILE: Qt's common headers are read once for all targets (ON) or for those of tests/ (TESTS). ON is for builds
# that have to be quick; the programs that people work on and those that ship are without it, as it hides an include that
# is missing.
set_property(CACHE EVOX_PRECOMPILE PROPERTY STRINGS OFF TESTS ON)

# evox_use_precompiled(target): if this build does so for targets like this.
function(evox_use_precompiled target)
    get_target_property(sources ${target} SOURCES)
    if(NOT TARGET evox_precompiled OR target STREQUAL evox_precompiled OR NOT sources MATCHES "[.]cpp")
        return()
    endif()
    set(tests ${CMAKE_SOURCE_DIR}/tests)
    cmake_path(IS_PREFIX tests ${CMAKE_CURRENT_SOURCE_DIR} is_test)
    if(is_test OR NOT EVOX_PRECOMPILE STREQUAL TESTS)
        target_precompile_headers(${target} REUSE_FROM evox_precompiled)
    endif()
endfunction()

if(EVOX_PRECOMPILE)
    file(WRITE ${CMAKE_BINARY_DIR}/precompiled.cpp "// holds the precompiled headers\n")
    add_library(evox_precompiled OBJECT ${CMAKE_BINARY_DIR}/precompiled.cpp)
    target_link_libraries(evox_precompiled PRIVATE Qt5::Core)
    # Not linked: the macros that tell which modules are would keep the others from using it.
    target_include_directories(evox_precompiled SYSTEM PRIVATE
        ${Qt5Gui_INCLUDE_DIRS} ${Qt5Widgets_INCLUDE_DIRS} ${Qt5Network_INCLUDE_DIRS})
    evox_warnings(evox_precompiled)
    target_precompile_headers(evox_precompiled PRIVATE
        $<$<COMPILE_LANGUAGE:CXX>:${CMAKE_SOURCE_DIR}/cmake/Precompiled.h>)
endif()
