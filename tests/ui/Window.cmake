quillmarsh_window_test(window_tests
  SOURCES AnalyzeTest.cpp EveryCommandTest.cpp ExcludeListTest.cpp LayoutTest.cpp MenusTest.cpp SearchOptionsTest.cpp
    SingleInstanceTest.cpp WindowDialogsTest.cpp WindowFixture.cpp
    WindowResultsTest.cpp WindowSearchTest.cpp WindowTest.cpp
  USES startup test_support)
add_dependencies(window_tests pbcrc32)

# Of one drive there is one removal at a time.
add_executable(window_removal_tests WindowFixture.cpp WindowRemovalTest.cpp WindowTestMain.cpp)
target_include_directories(window_removal_tests PRIVATE ${CMAKE_SOURCE_DIR}/tests)
target_link_libraries(window_removal_tests PRIVATE
  startup Qt6::Test quillmarsh_options GTest::gtest)
add_dependencies(window_removal_tests pbcrc32)
gtest_discover_tests(window_removal_tests DISCOVERY_TIMEOUT 60 NO_PRETTY_VALUES
  PROPERTIES ENVIRONMENT "QT_QPA_PLATFORM=offscreen" RESOURCE_LOCK removal)
