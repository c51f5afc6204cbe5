# SPDX-License-Identifier: MIT
# The toolkit would look for the Mac's OpenGL framework.
if(NOT TARGET WrapOpenGL::WrapOpenGL)
  add_library(WrapOpenGL::WrapOpenGL INTERFACE IMPORTED GLOBAL)
endif()
