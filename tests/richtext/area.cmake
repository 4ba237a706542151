set_target_properties(tests_richtext PROPERTIES UNCHECKED *HugeTexts* SECONDS 45)
