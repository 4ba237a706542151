set_target_properties(tests_richtext PROPERTIES HEAP_CHECKED tests_richtext.exe PIECES 2 SECONDS 60)
