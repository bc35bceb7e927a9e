# format-check, format: clang-format over every source; tidy: clang-tidy over the product's own sources.
file(GLOB_RECURSE EVOX_FORMATTED CONFIGURE_DEPENDS
     src/*.cpp src/*.h packaging/*.cpp packaging/*.h server/*.cpp server/*.h tests/*.cpp tests/*.h tests/*.c
     bench/*.cpp bench/*.h fuzz/*.cpp cmake/*.h)
find_program(EVOX_CLANG_FORMAT NAMES clang-format)
if(EVOX_CLANG_FORMAT)
    add_custom_target(format-check COMMAND ${EVOX_CLANG_FORMAT} --dry-run -Werror ${EVOX_FORMATTED})
    add_custom_target(format COMMAND ${EVOX_CLANG_FORMAT} -i ${EVOX_FORMATTED})
endif()
find_program(EVOX_RUN_CLANG_TIDY NAMES run-clang-tidy run-clang-tidy-14)
if(EVOX_RUN_CLANG_TIDY)
    add_custom_target(tidy COMMAND ${EVOX_RUN_CLANG_TIDY} -quiet -p ${CMAKE_BINARY_DIR}
                      "^${CMAKE_SOURCE_DIR}/(src|server)/")
endif()
