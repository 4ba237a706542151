set_target_properties(tests_files PROPERTIES PIECES 2 SECONDS 76)
# (The script that this one runs.)
set_source_files_properties(files/text/text_decoder_test_support.cpp PROPERTIES
    COMPILE_DEFINITIONS "TESSALY_TEXT_FILES=L\"${CMAKE_CURRENT_SOURCE_DIR}/files/text/text_files.py\""
    SKIP_PRECOMPILE_HEADERS ON)
