set_target_properties(tests_shell PROPERTIES SECONDS 15)
# What the shell below the test platform is asked for, as in the end-to-end tests.
target_sources(tests_shell PRIVATE ${CMAKE_CURRENT_SOURCE_DIR}/e2e/support/unix_shell.cpp)
