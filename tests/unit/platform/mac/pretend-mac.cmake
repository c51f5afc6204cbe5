# SPDX-License-Identifier: MIT
# Lets CMake configure the program as on a Mac, far from one: enough to see what would be built from
# which sources and what the bundle says, not enough to link anything.
set(CMAKE_SYSTEM_NAME Darwin)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(CMAKE_CXX_COMPILER_WORKS ON)
set(CMAKE_TRY_COMPILE_TARGET_TYPE STATIC_LIBRARY)
set(CMAKE_INSTALL_NAME_TOOL false)
set(CMAKE_PROJECT_INCLUDE ${CMAKE_CURRENT_LIST_DIR}/pretend-opengl.cmake)
