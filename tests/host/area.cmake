set_target_properties(tests_host PROPERTIES PIECES 2 SECONDS 70)
# The program's own sources are in no library; the tests of the whole start it as it was built.
target_sources(tests_host PRIVATE ${PROJECT_SOURCE_DIR}/src/host/command_line.cpp
    ${PROJECT_SOURCE_DIR}/src/host/commands/command_outcome.cpp
    ${PROJECT_SOURCE_DIR}/src/host/commands/command_text.cpp
    ${PROJECT_SOURCE_DIR}/src/host/commands/export_text.cpp
    ${PROJECT_SOURCE_DIR}/src/host/commands/import_command.cpp
    ${PROJECT_SOURCE_DIR}/src/host/commands/import_reader.cpp
    ${PROJECT_SOURCE_DIR}/src/host/commands/output.cpp
    ${PROJECT_SOURCE_DIR}/src/host/commands/run_command.cpp
    ${PROJECT_SOURCE_DIR}/src/host/commands/snapshot_listing.cpp)
add_dependencies(tests_host TSEXE64 launch_probe)
