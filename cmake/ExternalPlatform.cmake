# The vehicle's own platform libraries, found by their sonames below TARN7_PLATFORM_LIBRARY_DIR (a sysroot's library folder).
set(TARN7_PLATFORM_LIBRARY_DIR "" CACHE PATH "Folder of libara_com.so.1, libara_vsomeipbinding.so.1, libe2exf.so.4.2.2 and libara_log.so.1")

function(tarn7_external_library name file)
  find_file(TARN7_${name}_LIBRARY NAMES ${file} HINTS ${TARN7_PLATFORM_LIBRARY_DIR} PATH_SUFFIXES lib lib64 REQUIRED)
  add_library(${name} SHARED IMPORTED GLOBAL)
  set_target_properties(${name} PROPERTIES IMPORTED_LOCATION "${TARN7_${name}_LIBRARY}")
  target_link_libraries(${name} INTERFACE tarn7::headers)
endfunction()

tarn7_external_library(ara_log libara_log.so.1)
tarn7_external_library(ara_com libara_com.so.1)
tarn7_external_library(ara_vsomeipbinding libara_vsomeipbinding.so.1)
tarn7_external_library(e2exf libe2exf.so.4.2.2)
