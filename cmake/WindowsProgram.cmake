# evox_windows_program(target): a program of windows, without a console, with its icon, version and manifest.
function(evox_windows_program target)
    set(resources ${CMAKE_SOURCE_DIR}/packaging/windows/program)
    set(built ${CMAKE_CURRENT_BINARY_DIR}/${target}-resources)
    set(EVOX_ICON ${built}/${target}.ico)
    set(EVOX_MANIFEST ${resources}/${target}.manifest)
    evox_windows_icon(${CMAKE_SOURCE_DIR}/resources/icons/app_icon.svg ${EVOX_ICON} EVOX_ICON_STATEMENT)
    if(EVOX_ICON_STATEMENT)
        set(EVOX_ICON_DEPENDS ${EVOX_ICON})
    endif()
    string(REPLACE "." "," EVOX_VERSION_NUMBERS "${PROJECT_VERSION}.0")
    configure_file(${resources}/${target}.rc.in ${built}/${target}.rc @ONLY)
    set_source_files_properties(${built}/${target}.rc PROPERTIES OBJECT_DEPENDS "${EVOX_ICON_DEPENDS};${EVOX_MANIFEST}")
    target_sources(${target} PRIVATE ${built}/${target}.rc)
    set_target_properties(${target} PROPERTIES WIN32_EXECUTABLE ON)
    if(MSVC)
        target_link_options(${target} PRIVATE /MANIFEST:NO) # the resources bring their own
    endif()
endfunction()

# evox_windows_icon(svg ico statement): an icon in the sizes that Windows shows, and what the resources say of it. Only on
# Windows itself may the tools that draw it be missing.
function(evox_windows_icon svg ico statement)
    set(required REQUIRED)
    if(NOT CMAKE_CROSSCOMPILING)
        set(required)
    endif()
    find_program(EVOX_RSVG_CONVERT rsvg-convert ${required})                      # Debian: librsvg2-bin
    find_program(EVOX_IMAGEMAGICK NAMES magick convert-im6.q16 ${required})       # Debian: imagemagick
    if(NOT EVOX_RSVG_CONVERT OR NOT EVOX_IMAGEMAGICK)
        message(WARNING "The program gets no icon: rsvg-convert and ImageMagick draw it, and are not on PATH")
        set(${statement} "" PARENT_SCOPE)
        return()
    endif()
    foreach(size 16 20 24 32 40 48 64 128 256)
        list(APPEND commands COMMAND ${EVOX_RSVG_CONVERT} -w ${size} -h ${size} -o ${ico}.${size}.png ${svg})
        list(APPEND pictures ${ico}.${size}.png)
    endforeach()
    add_custom_command(OUTPUT ${ico} ${commands} COMMAND ${EVOX_IMAGEMAGICK} ${pictures} ${ico}
                       DEPENDS ${svg} COMMENT "Drawing ${ico}" VERBATIM)
    set(${statement} "1 ICON \"${ico}\"" PARENT_SCOPE)
endfunction()
