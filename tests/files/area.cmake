set_target_properties(tests_files PROPERTIES HEAP_CHECKED tests_files.exe SECONDS 120)
