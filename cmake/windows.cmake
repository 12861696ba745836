# What the cross-build for Windows takes from this machine's own packages instead of the cross-compiler's folder.

# Inside the library and the program, which then need nothing but what every Windows has.
set(ZLIB_USE_STATIC_LIBS ON)

# What Windows shows of the target's file, and a program's manifest (a library's would be read at each loading and says
# nothing that its program's does not); without symbols, and in pages as they are mapped.
function(qxview_windows_file target type description)
  if(type STREQUAL VFT_DLL)
    set(QXVIEW_MANIFEST "")
    set(QXVIEW_FILE_NAME qxview.dll)
  else()
    set(QXVIEW_MANIFEST "1 24 \"resources/qxview.manifest\"")
    set(QXVIEW_FILE_NAME qxview.exe)
  endif()
  set(QXVIEW_FILE_TYPE ${type})
  set(QXVIEW_FILE_DESCRIPTION ${description})
  configure_file(${CMAKE_SOURCE_DIR}/resources/version.rc.in ${CMAKE_BINARY_DIR}/${target}.rc @ONLY)
  target_sources(${target} PRIVATE ${CMAKE_BINARY_DIR}/${target}.rc)
  set_property(SOURCE ${CMAKE_BINARY_DIR}/${target}.rc PROPERTY OBJECT_DEPENDS
               ${CMAKE_SOURCE_DIR}/resources/qxview.manifest)
  # No time of the link in the header: the same sources give the same file.
  target_link_options(${target} PRIVATE -s -Wl,--file-alignment,4096 -Wl,--no-insert-timestamp)
endfunction()
