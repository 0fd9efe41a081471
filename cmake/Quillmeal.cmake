# qm_core_library(NAME SOURCES...) / qm_ui_library(NAME SOURCES...): the two libraries of a src/ folder.
# A core library links no widgets, so a widget include there fails to compile.
function(qm_core_library name)
  add_library(${name} STATIC ${ARGN})
  target_include_directories(${name} PUBLIC ${CMAKE_SOURCE_DIR}/src)
  target_link_libraries(${name} PUBLIC Qt6::Core Qt6::Gui)
endfunction()

function(qm_ui_library name)
  add_library(${name} STATIC ${ARGN})
  target_include_directories(${name} PUBLIC ${CMAKE_SOURCE_DIR}/src)
  target_link_libraries(${name} PUBLIC Qt6::Widgets)
endfunction()

# qm_add_test(NAME SOURCES... LIBS libs... [GUI]): one QtTest executable registered with CTest.
# Every test runs offscreen in the C locale (numbers with a point) and gets QM_TEST_DATA
# (tests/data) and QM_SOURCE_DATA (data/).
function(qm_add_test name)
  cmake_parse_arguments(T "GUI" "" "SOURCES;LIBS" ${ARGN})
  add_executable(${name} ${T_SOURCES})
  set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/tests)
  target_link_libraries(${name} PRIVATE Qt6::Test ${T_LIBS})
  target_compile_definitions(${name} PRIVATE
    QM_TEST_DATA="${CMAKE_SOURCE_DIR}/tests/data"
    QM_SOURCE_DATA="${CMAKE_SOURCE_DIR}/data"
    QM_BIN_DIR="${QM_BIN_DIR}")
  add_test(NAME ${name} COMMAND ${name})
  set_tests_properties(${name} PROPERTIES
    ENVIRONMENT "QT_QPA_PLATFORM=offscreen;QT_LOGGING_RULES=qt.qpa.*=false;LC_ALL=C.UTF-8"
    TIMEOUT 300)
endfunction()

# qm_add_tests_in_folder(LIBS...): every test_*.cpp of the current folder becomes one test.
function(qm_add_tests_in_folder)
  file(GLOB tests CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/test_*.cpp)
  foreach(src ${tests})
    get_filename_component(name ${src} NAME_WE)
    qm_add_test(${name} SOURCES ${src} LIBS ${ARGN})
  endforeach()
endfunction()
