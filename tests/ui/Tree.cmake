quillmarsh_window_test(tree_tests
  SOURCES TreeTest.cpp ../platform/posix/TempTree.cpp
  USES platform_posix platform_simulated)
target_compile_definitions(tree_tests PRIVATE
  QUILLMARSH_SLOWNESS=$<IF:$<BOOL:${QUILLMARSH_SANITIZED}>,3,1>)
