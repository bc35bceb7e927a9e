# EVOX_PRECOMPILE: Qt's common headers are read once for all targets. For builds that have to be quick; those that people
# work with and those that ship are without it, as it hides an include that is missing.
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
