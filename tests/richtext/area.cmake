set_target_properties(tests_richtext PROPERTIES UNCHECKED *HugeTexts* PIECES 2 SECONDS 40)
