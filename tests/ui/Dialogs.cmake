quillmarsh_window_test(dialog_tests
  SOURCES
    DialogsTest.cpp
    FileTypeEditorTest.cpp
    FilterDialogTest.cpp
    HelpTest.cpp
    IconsTest.cpp
    QtViewsTest.cpp
    SelectionAssistantTest.cpp
    ../platform/posix/TempTree.cpp
  USES platform_posix test_support platform_simulated)
