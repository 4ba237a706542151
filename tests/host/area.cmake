set_target_properties(tests_host PROPERTIES PIECES 2 SECONDS 68)
# The program's own sources are in no library; the tests of the whole start it as it was built.
target_sources(tests_host PRIVATE ${PROJECT_SOURCE_DIR}/src/host/command_line.cpp)
add_dependencies(tests_host TSEXE64 launch_probe)
