# (What is freed is overwritten where it is marked: nothing shows whether it was wiped before.)
set_target_properties(tests_runtime PROPERTIES UNCHECKED CSBufZ.*:*Wiped* PIECES 2 SECONDS 46 ALL_PROCESSORS yes)
# Asks what the tests ask.
target_include_directories(version_probe PRIVATE ${CMAKE_CURRENT_SOURCE_DIR})
