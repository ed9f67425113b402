# The windows: the sources of src/ui and of platform/qt are one target.
find_package(Qt6 6.4 REQUIRED COMPONENTS DBus Widgets Svg WebEngineCore WebEngineWidgets)

set(CMAKE_AUTOMOC_MOC_OPTIONS --include "${CMAKE_SOURCE_DIR}/cmake/MocFirst.h")

file(GLOB_RECURSE sources CONFIGURE_DEPENDS "${CMAKE_SOURCE_DIR}/src/*.cpp")
list(FILTER sources INCLUDE REGEX "/src/(ui|platform/qt)/")
list(FILTER sources EXCLUDE REGEX "/src/platform/qt/(ImageThumbnailer|SheetPainter|ChartPainter|Page[A-Za-z]+)\\.cpp")
add_library(nv_ui STATIC ${sources} "${CMAKE_SOURCE_DIR}/data/images/images.qrc")
set_target_properties(nv_ui PROPERTIES AUTOMOC ON AUTORCC ON)
target_link_libraries(nv_ui PUBLIC nv_app nv_web Qt6::Widgets Qt6::Svg Qt6::DBus PRIVATE nv_warnings)
target_precompile_headers(nv_ui PRIVATE ${NV_COMMON_HEADERS} <QAbstractTableModel> <QAction> <QDialog> <QIcon> <QMainWindow> <QPainter>
                          <QString> <QTableView> <QWidget>)

# Drawing pictures and showing pages, apart from the windows: the web engine is heavy to load.
file(GLOB web_sources CONFIGURE_DEPENDS "${CMAKE_SOURCE_DIR}/src/platform/qt/Page*.cpp")
add_library(nv_web STATIC ${web_sources} "${CMAKE_SOURCE_DIR}/src/platform/qt/ImageThumbnailer.cpp"
                          "${CMAKE_SOURCE_DIR}/src/platform/qt/SheetPainter.cpp"
                          "${CMAKE_SOURCE_DIR}/src/platform/qt/ChartPainter.cpp")
set_target_properties(nv_web PROPERTIES AUTOMOC ON)
target_link_libraries(nv_web PUBLIC nv_platform Qt6::WebEngineCore Qt6::WebEngineWidgets PRIVATE nv_warnings)

configure_file("${CMAKE_SOURCE_DIR}/data/dailytips.txt" "${CMAKE_BINARY_DIR}/dailytips.txt" COPYONLY)
# The guide with all that it leads to, as the installed program has it in ../share/norvelane/docs.
file(CREATE_LINK "${CMAKE_SOURCE_DIR}/docs" "${CMAKE_BINARY_DIR}/docs" SYMBOLIC)

# nv_gui_test(FILE): the program gui_<name> of tests/gui/<name>_test.cpp, run without a display.
function(nv_gui_test FILE)
  get_filename_component(name "${FILE}" NAME_WE)
  string(REGEX REPLACE "_test$" "" name "${name}")
  add_executable(gui_${name} "${FILE}")
  set_target_properties(gui_${name} PROPERTIES AUTOMOC ON)
  target_link_libraries(gui_${name} PRIVATE nv_ui nv_test_support Qt6::Test)
  nv_test_options(gui_${name})
  nv_precompile(gui_${name} gui_main_window ${NV_COMMON_HEADERS} <QApplication> <QDialog> <QTableView> <QTest> <QWidget>)
  add_dependencies(gui_${name} nv_time_zones)
  add_test(NAME gui.${name} COMMAND gui_${name})
  set_tests_properties(gui.${name} PROPERTIES ENVIRONMENT "QT_QPA_PLATFORM=offscreen" TIMEOUT 120)
endfunction()
