# What every target of the project is compiled with.
add_library(tessaly_flags INTERFACE)
target_compile_definitions(tessaly_flags INTERFACE
    UNICODE _UNICODE NOMINMAX WIN32_LEAN_AND_MEAN STRICT
    _WIN32_WINNT=0x0502 WINVER=0x0502 _WIN32_IE=0x0603 NTDDI_VERSION=0x05020000)
target_compile_options(tessaly_flags INTERFACE
    -Wall -Wextra -Wshadow
    # Some members are defined on null objects; the compiler must keep their tests.
    -fno-delete-null-pointer-checks -Wno-nonnull-compare)
target_include_directories(tessaly_flags INTERFACE ${PROJECT_SOURCE_DIR}/src)

# What ships: no exceptions, no RTTI, no guards of the C++ runtime around local statics. Small before
# fast, but for the sources that src/CMakeLists.txt names: most of the rest waits for the platform.
# Only what is declared inline, small or called once is inlined: more makes nothing faster.
add_library(tessaly_product_flags INTERFACE)
target_link_libraries(tessaly_product_flags INTERFACE tessaly_flags)
target_compile_options(tessaly_product_flags INTERFACE
    -fno-exceptions -fno-rtti -fno-threadsafe-statics -Os -fno-inline-functions
    -fstack-protector-strong # runtime/base/stack_guard.cpp
    # (A section for each datum would take zero buffers out of .bss: the file would hold their zeros.)
    -ffunction-sections)

# The product counts which of its lines run (scripts/coverage); not optimised, as each line is to be told.
if(TESSALY_COVERAGE)
    target_compile_options(tessaly_product_flags INTERFACE "$<$<NOT:$<COMPILE_LANGUAGE:RC>>:--coverage;-O0>")
    target_link_libraries(tessaly_product_flags INTERFACE gcov)
endif()

# The image of everything that must load on Windows XP x64.
add_library(tessaly_image_flags INTERFACE)
target_link_options(tessaly_image_flags INTERFACE
    -static -static-libgcc -s
    -Wl,--gc-sections -Wl,--major-os-version,5 -Wl,--minor-os-version,2
    -Wl,--dynamicbase -Wl,--nxcompat -Wl,--high-entropy-va
    -Wl,--no-insert-timestamp) # the same sources give the same bytes
# Makes read-only what only the loader writes: the functions that run at start and end (.CRT), and with
# IMPORTS the addresses of imports; a program with delayed imports writes those itself. GNU's tools
# insist that a section ".idata" can be written; by another name it is found as well. (The preserved
# date is that in the image, too.)
function(tessaly_protect_image target)
    cmake_parse_arguments(PARSE_ARGV 1 arg "IMPORTS" "" "")
    set(read_only contents,alloc,load,readonly,data)
    set(renaming "")
    if(arg_IMPORTS)
        set(renaming --rename-section .idata=.imports,${read_only})
    endif()
    add_custom_command(TARGET ${target} POST_BUILD
        COMMAND ${CMAKE_OBJCOPY} --preserve-dates --set-section-flags .CRT=${read_only} ${renaming} $<TARGET_FILE:${target}>
        VERBATIM)
endfunction()

# Undefined behaviour ends a checked program with an illegal instruction. Null objects are left
# out: calling some members on them is defined here.
add_library(tessaly_checked_flags INTERFACE)
target_compile_options(tessaly_checked_flags INTERFACE
    -fsanitize=undefined -fsanitize-undefined-trap-on-error
    -fno-sanitize=vptr,null,nonnull-attribute,returns-nonnull-attribute)
