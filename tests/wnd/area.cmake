set_target_properties(tests_wnd PROPERTIES HEAP_CHECKED tests_wnd.exe SECONDS 60)
