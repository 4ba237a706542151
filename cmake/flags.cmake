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
    # (A section for each datum would take zero buffers out of .bss: the file would hold their zeros.)
    -ffunction-sections)

# The image of everything that must load on Windows XP x64.
add_library(tessaly_image_flags INTERFACE)
target_link_options(tessaly_image_flags INTERFACE
    -static -static-libgcc -s
    -Wl,--gc-sections -Wl,--major-os-version,5 -Wl,--minor-os-version,2
    -Wl,--dynamicbase -Wl,--nxcompat -Wl,--high-entropy-va)

# Undefined behaviour ends a checked program with an illegal instruction. Null objects are left
# out: calling some members on them is defined here.
add_library(tessaly_checked_flags INTERFACE)
target_compile_options(tessaly_checked_flags INTERFACE
    -fsanitize=undefined -fsanitize-undefined-trap-on-error
    -fno-sanitize=vptr,null,nonnull-attribute,returns-nonnull-attribute
    -fstack-protector-strong)
