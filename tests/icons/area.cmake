set_target_properties(tests_icons PROPERTIES SECONDS 50)
