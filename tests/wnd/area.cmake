target_link_libraries(tests_wnd PRIVATE winspool) # makes a printer to print on
set_target_properties(tests_wnd PROPERTIES PIECES 3 SECONDS 35)
# The module remembers what it found across tests: this one reaches it by the name that it has there.
set_source_files_properties(wnd/draw/cdpi_test.cpp PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
