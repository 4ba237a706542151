set_target_properties(tests_progress PROPERTIES UNCHECKED ProgressRace.* PIECES 2 SECONDS 60 ALL_PROCESSORS yes)
