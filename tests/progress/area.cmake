set_target_properties(tests_progress PROPERTIES HEAP_CHECKED tests_progress.exe PIECES 4 SECONDS 60)
