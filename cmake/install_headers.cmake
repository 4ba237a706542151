# Run by `cmake --install`. Public are tessaly.h and the headers that it includes, directly or not; they
# keep their places below header_folder.
cmake_minimum_required(VERSION 3.24) # this is a script of its own
set(left tessaly.h)
set(headers "")
while(left)
    list(POP_FRONT left header)
    if(header IN_LIST headers)
        continue()
    endif()
    list(APPEND headers ${header})
    file(STRINGS ${source_folder}/${header} includes REGEX "^#include \"")
    list(TRANSFORM includes REPLACE "^#include \"([^\"]+)\".*" "\\1")
    list(APPEND left ${includes})
endwhile()

cmake_path(ABSOLUTE_PATH header_folder BASE_DIRECTORY ${CMAKE_INSTALL_PREFIX})
foreach(header ${headers})
    cmake_path(GET header PARENT_PATH folder)
    file(INSTALL ${source_folder}/${header} DESTINATION ${header_folder}/${folder})
endforeach()
