# What `cmake --install` lays down: the libraries, the headers that an application includes, the tool, and a CMake package
# `tarn7` (find_package(tarn7)) with the target tarn7::tarn7. The prefix may be moved as a whole afterwards.
include(CMakePackageConfigHelpers)

set(tarn7_package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/tarn7)

# Libraries that are installed side by side find each other there.
set(tarn7_libraries tarn7)
if(TARN7_PLATFORM STREQUAL "host")
  list(APPEND tarn7_libraries ara_log ara_com ara_vsomeipbinding e2exf)
endif()
if(TARN7_STACK_NAME STREQUAL "embedded")
  list(APPEND tarn7_libraries tarn7_embedded_stack)
endif()
set_target_properties(${tarn7_libraries} PROPERTIES INSTALL_RPATH "$ORIGIN")
if(TARGET tarn7_tool)
  cmake_path(RELATIVE_PATH CMAKE_INSTALL_FULL_LIBDIR BASE_DIRECTORY "${CMAKE_INSTALL_FULL_BINDIR}" OUTPUT_VARIABLE tarn7_bin_to_lib)
  set_target_properties(tarn7_tool PROPERTIES INSTALL_RPATH "$ORIGIN/${tarn7_bin_to_lib}")
endif()
if(TARN7_PLATFORM STREQUAL "host" AND TARN7_STACK_NAME STREQUAL "vsomeip3")
  # On a PC vsomeip3 may live in a prefix that the loader does not search. On the vehicle nothing but $ORIGIN is wanted.
  set_target_properties(${tarn7_libraries} PROPERTIES INSTALL_RPATH_USE_LINK_PATH ON)
  if(TARGET tarn7_tool)
    set_target_properties(tarn7_tool PROPERTIES INSTALL_RPATH_USE_LINK_PATH ON)
  endif()
endif()

# In the package every target is tarn7::NAME.
set_target_properties(tarn7_headers PROPERTIES EXPORT_NAME headers)
set_target_properties(tarn7_stack PROPERTIES EXPORT_NAME stack)
if(TARGET tarn7_embedded_stack)
  set_target_properties(tarn7_embedded_stack PROPERTIES EXPORT_NAME embedded_stack)
endif()
install(TARGETS tarn7_headers tarn7_stack ${tarn7_libraries} EXPORT tarn7-targets)
install(EXPORT tarn7-targets NAMESPACE tarn7:: DESTINATION ${tarn7_package_dir})

# Headers keep their paths, because they include each other by them.
set(tarn7_include_dir ${CMAKE_INSTALL_INCLUDEDIR}/tarn7)
install(DIRECTORY core_types serialization ara registry interfaces DESTINATION ${tarn7_include_dir}
  FILES_MATCHING PATTERN "*.h")
install(DIRECTORY platform/include DESTINATION ${tarn7_include_dir}/platform FILES_MATCHING PATTERN "*.h")
if(TARN7_STACK_NAME STREQUAL "embedded")
  # In a folder of their own: a vsomeip3 in the same prefix has headers of the same names.
  install(DIRECTORY embedded_stack/include/ DESTINATION ${tarn7_include_dir}/embedded_stack FILES_MATCHING PATTERN "*.hpp")
endif()

configure_package_config_file(cmake/tarn7-config.cmake.in ${PROJECT_BINARY_DIR}/tarn7-config.cmake
  INSTALL_DESTINATION ${tarn7_package_dir} NO_SET_AND_CHECK_MACRO)
# Before 1.0 each minor version may change the interface.
write_basic_package_version_file(${PROJECT_BINARY_DIR}/tarn7-config-version.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/tarn7-config.cmake ${PROJECT_BINARY_DIR}/tarn7-config-version.cmake
  DESTINATION ${tarn7_package_dir})
if(TARN7_PLATFORM STREQUAL "external")
  install(FILES cmake/ExternalPlatform.cmake DESTINATION ${tarn7_package_dir})
endif()
install(FILES LICENSE DESTINATION ${CMAKE_INSTALL_DOCDIR})
