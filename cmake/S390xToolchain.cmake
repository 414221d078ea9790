# A processor that stores the most significant byte first, as the wire does.
set(CMAKE_SYSTEM_PROCESSOR s390x)
include(${CMAKE_CURRENT_LIST_DIR}/CrossToolchain.cmake)
