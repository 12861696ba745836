# What is installed: the program, the library with what programs that are built against it need, samples and texts.
include(GNUInstallDirs)   # behind project(): below /usr the library goes into Debian's folder for the architecture
include(CMakePackageConfigHelpers)

set(EXAMPLES_DIR ${CMAKE_INSTALL_DOCDIR}/examples)
set(PACKAGE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/qxview)

# ---- The library ----
set_target_properties(libqxview PROPERTIES VERSION ${QXVIEW_ABI}.${QXVIEW_ABI_ADDITIONS}.0 SOVERSION ${QXVIEW_ABI}
                      EXPORT_NAME qxview)
target_include_directories(libqxview INTERFACE $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
install(TARGETS libqxview EXPORT qxviewTargets
        RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT library
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT library NAMELINK_COMPONENT development
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development)
install(EXPORT qxviewTargets NAMESPACE qxview:: DESTINATION ${PACKAGE_DIR} COMPONENT development)
# What the static library leaves to be linked, by names that stand for themselves elsewhere.
set(NEEDED_LIBRARIES z)
get_target_property(linked qxview_host INTERFACE_LINK_LIBRARIES)
foreach(library ${linked})
  if(library MATCHES "/lib([^/]+)\\.(so|a)$")
    list(APPEND NEEDED_LIBRARIES ${CMAKE_MATCH_1})
  elseif(library MATCHES "^[a-z0-9]+$")
    list(APPEND NEEDED_LIBRARIES ${library})
  endif()
endforeach()
if(QXVIEW_STATIC)
  set_target_properties(libqxview_static PROPERTIES EXPORT_NAME qxview_static)
  target_include_directories(libqxview_static INTERFACE $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
  set_target_properties(libqxview_static PROPERTIES INTERFACE_LINK_LIBRARIES "${NEEDED_LIBRARIES}"
                        LINKER_LANGUAGE CXX)
  install(TARGETS libqxview_static EXPORT qxviewStaticTargets ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
          COMPONENT development)
  install(EXPORT qxviewStaticTargets NAMESPACE qxview:: DESTINATION ${PACKAGE_DIR} COMPONENT development)
endif()
install(DIRECTORY include/qxview DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT development
        FILES_MATCHING PATTERN "*.h")

configure_package_config_file(cmake/qxviewConfig.cmake.in ${CMAKE_BINARY_DIR}/qxviewConfig.cmake
                              INSTALL_DESTINATION ${PACKAGE_DIR})
write_basic_package_version_file(${CMAKE_BINARY_DIR}/qxviewConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_BINARY_DIR}/qxviewConfig.cmake ${CMAKE_BINARY_DIR}/qxviewConfigVersion.cmake
        DESTINATION ${PACKAGE_DIR} COMPONENT development)

# A prefix may be named when installing, so qxview.pc finds it from where it stands; a system's own is named as such.
if(CMAKE_INSTALL_PREFIX MATCHES "^/usr/?$")
  set(QXVIEW_PC_PREFIX /usr)
else()
  file(RELATIVE_PATH up /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
  string(REGEX REPLACE "/$" "" up ${up})
  set(QXVIEW_PC_PREFIX "\${pcfiledir}/${up}")
endif()
list(JOIN NEEDED_LIBRARIES " -l" QXVIEW_PC_PRIVATE)
string(PREPEND QXVIEW_PC_PRIVATE "-lstdc++ -l")
configure_file(cmake/qxview.pc.in ${CMAKE_BINARY_DIR}/qxview.pc @ONLY)
install(FILES ${CMAKE_BINARY_DIR}/qxview.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)

install(FILES docs/embedding.md docs/adding-a-decoder.md docs/capture-file.md docs/decode.schema.json
        DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT development)
install(DIRECTORY samples/ DESTINATION ${EXAMPLES_DIR} COMPONENT development USE_SOURCE_PERMISSIONS
        PATTERN record EXCLUDE PATTERN __pycache__ EXCLUDE)
# The module is one for all versions of Python; another place may be named.
set(QXVIEW_PYTHON_DIR lib/python3/dist-packages CACHE STRING "Where qxview.py is installed, below the prefix")
install(FILES python/qxview.py DESTINATION ${QXVIEW_PYTHON_DIR} COMPONENT python)
if(WIN32)
  install(FILES exports/qxview.def DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development)   # for other compilers
endif()

# ---- The program ----
install(TARGETS qxview RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT program)
install(FILES README.md CHANGELOG.md docs/reading-the-output.md docs/settings.md DESTINATION ${CMAKE_INSTALL_DOCDIR}
        COMPONENT program)
if(NOT WIN32)
  install(FILES docs/qxview.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT program)
  install(FILES completions/qxview.bash DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions RENAME qxview
          COMPONENT program)
  install(FILES completions/_qxview DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/vendor-completions COMPONENT program)
  install(FILES completions/qxview.fish DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d COMPONENT program)
endif()
