# (What is freed is overwritten where it is marked: nothing shows whether it was wiped before.)
set_target_properties(tests_runtime PROPERTIES UNCHECKED CSBufZ.*:*Wiped* PIECES 2 SECONDS 46)
