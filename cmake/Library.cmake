# tarn7_headers: rooms 1 to 5, which are headers (the product instantiates them). Include paths start at the repository root.
find_package(Boost 1.74 REQUIRED)
find_package(Threads REQUIRED)

add_library(tarn7_headers INTERFACE)
target_include_directories(tarn7_headers INTERFACE
  $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}> $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}/tarn7>)
target_link_libraries(tarn7_headers INTERFACE Boost::headers Threads::Threads tarn7::stack)
add_library(tarn7::headers ALIAS tarn7_headers)
