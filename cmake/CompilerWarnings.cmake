# evox_warnings(target): the project's warnings, the Qt switches and, in builds that have them, the precompiled headers
# that every target is built with.
function(evox_warnings target)
    target_compile_definitions(${target} PRIVATE
        QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_FOREACH
        QT_DEPRECATED_WARNINGS QT_DISABLE_DEPRECATED_BEFORE=0x050F00
        QT_NO_NARROWING_CONVERSIONS_IN_CONNECT)
    target_compile_options(${target} PRIVATE
        $<$<CXX_COMPILER_ID:GNU,Clang>:-Wall;-Wextra;-Wpedantic;-Wshadow;-Wconversion>
        $<$<AND:$<COMPILE_LANGUAGE:CXX>,$<CXX_COMPILER_ID:GNU,Clang>>:-Wold-style-cast;-Woverloaded-virtual>
        $<$<CXX_COMPILER_ID:MSVC>:/W4;/utf-8;/permissive-;/Zc:__cplusplus;/external:anglebrackets;/external:W0>)
    if(MSVC)
        target_compile_definitions(${target} PRIVATE UNICODE _UNICODE NOMINMAX WIN32_LEAN_AND_MEAN)
    endif()
    if(EVOX_WERROR)
        target_compile_options(${target} PRIVATE
            $<$<CXX_COMPILER_ID:GNU,Clang>:-Werror> $<$<CXX_COMPILER_ID:MSVC>:/WX>)
    endif()
    evox_use_precompiled(${target})
endfunction()
