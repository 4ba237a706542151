set_target_properties(tests_shell PROPERTIES HEAP_CHECKED tests_shell.exe)
# Has Python read what the library wrote.
target_sources(tests_shell PRIVATE e2e/support/unix_shell.cpp)
