quillmarsh_window_test(tree_tests
  SOURCES TreeTest.cpp ../platform/posix/TempTree.cpp
  USES platform_posix platform_simulated)
