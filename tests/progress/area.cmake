set_target_properties(tests_progress PROPERTIES PIECES 2 SECONDS 66)
