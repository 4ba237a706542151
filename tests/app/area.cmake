set_target_properties(tests_app PROPERTIES PIECES 3 SECONDS 80 ALL_PROCESSORS yes)
# Must compile with nothing in front of it.
set_source_files_properties(app/umbrella_test.cpp PROPERTIES
    SKIP_PRECOMPILE_HEADERS ON SKIP_UNITY_BUILD_INCLUSION ON)
# Is what is to be started, and has no console.
target_link_options(launch_probe PRIVATE -mwindows)
# Sets the clock, and takes what would be started.
target_include_directories(update_probe PRIVATE ${CMAKE_CURRENT_SOURCE_DIR})
