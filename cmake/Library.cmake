# tarn7_headers: rooms 1 to 5, which are headers (the product instantiates them). Include paths start at the repository root.
find_package(Boost 1.74 REQUIRED)
find_package(Threads REQUIRED)

add_library(tarn7_headers INTERFACE)
target_include_directories(tarn7_headers INTERFACE
  $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}> $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}/tarn7>)
target_link_libraries(tarn7_headers INTERFACE Boost::headers Threads::Threads tarn7::stack)
# A header decides by it, so it goes with the headers to everyone who instantiates them, installed or not.
if(NOT TARN7_SHORT_SCALAR MATCHES "^(fatal|error)$")
  message(FATAL_ERROR "TARN7_SHORT_SCALAR is '${TARN7_SHORT_SCALAR}': it must be fatal or error")
endif()
string(COMPARE EQUAL "${TARN7_SHORT_SCALAR}" "fatal" tarn7_short_scalar_is_fatal)
target_compile_definitions(tarn7_headers INTERFACE TARN7_SHORT_SCALAR_IS_FATAL=${tarn7_short_scalar_is_fatal})
add_library(tarn7::headers ALIAS tarn7_headers)
