# SPDX-License-Identifier: MIT
# What makes the program an application bundle on a Mac.
set(BRINDLE_BUNDLE_NAME Brindle)
set(BRINDLE_BUNDLE_ICON brindle.icns)
string(REPLACE "." ";" BRINDLE_BUNDLE_ID "${BRINDLE_MAKER_DOMAIN}")
list(REVERSE BRINDLE_BUNDLE_ID)
list(APPEND BRINDLE_BUNDLE_ID ${BRINDLE_BUNDLE_NAME})
list(JOIN BRINDLE_BUNDLE_ID "." BRINDLE_BUNDLE_ID)

# brindle_write_info_plist(FILE): tells the Finder who the bundle is and which files are its own.
function(brindle_write_info_plist file)
  configure_file(${CMAKE_CURRENT_FUNCTION_LIST_DIR}/Info.plist.in ${file} @ONLY)
endfunction()

# brindle_make_bundle(TARGET): the executable TARGET becomes Brindle.app, with its icon.
function(brindle_make_bundle target)
  set(icon ${CMAKE_CURRENT_FUNCTION_LIST_DIR}/${BRINDLE_BUNDLE_ICON})
  set(plist ${CMAKE_CURRENT_BINARY_DIR}/Info.plist.bundle)
  brindle_write_info_plist(${plist})
  target_sources(${target} PRIVATE ${icon})
  set_source_files_properties(${icon} PROPERTIES MACOSX_PACKAGE_LOCATION Resources)
  set_target_properties(${target} PROPERTIES
    MACOSX_BUNDLE ON
    MACOSX_BUNDLE_INFO_PLIST ${plist}
    OUTPUT_NAME ${BRINDLE_BUNDLE_NAME})
endfunction()
