quillmarsh_window_test(lists_tests
  SOURCES
    ${CMAKE_SOURCE_DIR}/tests/search/ProgramFixture.cpp
    ListsSpeedTest.cpp
    ListsTest.cpp
  USES search removal test_support platform_simulated)
target_compile_definitions(lists_tests PRIVATE
  QUILLMARSH_SLOWNESS=$<IF:$<BOOL:${QUILLMARSH_SANITIZED}>,3,1>)

quillmarsh_window_test(liveness_tests
  SOURCES ${CMAKE_SOURCE_DIR}/tests/search/ProgramFixture.cpp LivenessTest.cpp
  USES search removal test_support platform_simulated)
target_compile_definitions(liveness_tests PRIVATE
  QUILLMARSH_SLOWNESS=$<IF:$<BOOL:${QUILLMARSH_SANITIZED}>,3,1>)
