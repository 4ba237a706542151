# Compiles test sources as one, since each alone costs as much again for what it includes and for the
# templates that all of them use.
#
# tessaly_merge_tests(TARGET SOURCE...) adds the sources to the target, those of each folder as one
# file. Each of them stands in a namespace of its own there, so that their names never meet; what
# they include stands before all of that. A source with SKIP_UNITY_BUILD_INCLUSION stays alone.
# Without TESSALY_UNITY all do: then a change of one compiles only that one.
function(tessaly_merge_tests target)
    if(NOT TESSALY_UNITY)
        target_sources(${target} PRIVATE ${ARGN})
        return()
    endif()
    set(folders "")
    foreach(source ${ARGN})
        get_source_file_property(alone ${source} SKIP_UNITY_BUILD_INCLUSION)
        cmake_path(GET source PARENT_PATH folder)
        string(MAKE_C_IDENTIFIER "in_${folder}" folder) # no empty name for the list's own folder
        if(alone)
            target_sources(${target} PRIVATE ${source})
        else()
            list(APPEND folders ${folder})
            cmake_path(ABSOLUTE_PATH source OUTPUT_VARIABLE path)
            list(APPEND sources_${folder} ${path})
        endif()
    endforeach()
    list(REMOVE_DUPLICATES folders)
    foreach(folder ${folders})
        set(merged ${CMAKE_CURRENT_BINARY_DIR}/${target}_${folder}.cpp)
        add_custom_command(OUTPUT ${merged}
            COMMAND ${CMAKE_COMMAND} -D OUTPUT=${merged} -D "SOURCES=${sources_${folder}}"
                -P ${PROJECT_SOURCE_DIR}/cmake/merge_tests.cmake
            DEPENDS ${sources_${folder}} ${PROJECT_SOURCE_DIR}/cmake/merge_tests.cmake
            COMMENT "" VERBATIM)
        # (For the compiler the tests are headers now, in which an unnamed namespace is a trap.)
        set_source_files_properties(${merged} PROPERTIES COMPILE_OPTIONS -Wno-subobject-linkage)
        target_sources(${target} PRIVATE ${merged})
    endforeach()
endfunction()

# The command of the build: writes the sources' common file.
if(CMAKE_SCRIPT_MODE_FILE)
    set(includes "")
    set(parts "")
    foreach(source ${SOURCES})
        file(STRINGS ${source} lines REGEX "^#include ")
        list(APPEND includes ${lines})
        cmake_path(GET source STEM name)
        string(APPEND parts "namespace ${name} {\n#include \"${source}\"\n}\n")
    endforeach()
    list(REMOVE_DUPLICATES includes)
    list(JOIN includes "\n" includes)
    file(WRITE ${OUTPUT} "${includes}\n${parts}")
endif()
