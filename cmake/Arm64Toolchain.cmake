# 64-bit Arm, the vehicle's processor.
set(CMAKE_SYSTEM_PROCESSOR aarch64)
include(${CMAKE_CURRENT_LIST_DIR}/CrossToolchain.cmake)
