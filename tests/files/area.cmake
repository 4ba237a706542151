set_target_properties(tests_files PROPERTIES HEAP_CHECKED tests_files.exe PIECES 3 SECONDS 60)
