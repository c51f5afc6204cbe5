# SPDX-License-Identifier: MIT
set(BRINDLE_BUNDLE_NAME Brindle)
set(BRINDLE_BUNDLE_ICON brindle.icns)

# brindle_make_bundle(TARGET): on a Mac the executable TARGET becomes Brindle.app, with its icon and
# what the Finder reads to know who it is and which files are its own.
function(brindle_make_bundle target)
  set(icon ${CMAKE_CURRENT_FUNCTION_LIST_DIR}/${BRINDLE_BUNDLE_ICON})
  set(plist ${CMAKE_CURRENT_BINARY_DIR}/Info.plist.bundle)
  configure_file(${CMAKE_CURRENT_FUNCTION_LIST_DIR}/Info.plist.in ${plist} @ONLY)
  target_sources(${target} PRIVATE ${icon})
  set_source_files_properties(${icon} PROPERTIES MACOSX_PACKAGE_LOCATION Resources)
  set_target_properties(${target} PROPERTIES
    MACOSX_BUNDLE ON
    MACOSX_BUNDLE_INFO_PLIST ${plist}
    OUTPUT_NAME ${BRINDLE_BUNDLE_NAME})
endfunction()
