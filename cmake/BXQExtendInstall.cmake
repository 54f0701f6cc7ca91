# Installation and packaging: `cmake --install` puts the plug-in and its platform libraries, the
# public headers, bxq, the shipped databases and the translations in the usual places, with a
# CMake package (find_package(BXQExtend), one imported target BXQExtend::BXQExtend); CPack makes
# a .deb of the same tree.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(BXQ_INSTALL_INCLUDEDIR ${CMAKE_INSTALL_INCLUDEDIR}/bxqextend)
set(BXQ_INSTALL_CMAKEDIR ${CMAKE_INSTALL_LIBDIR}/cmake/BXQExtend)

# The installed libraries find each other beside themselves, bxq finds them in ../lib, wherever
# the tree was unpacked.
set_target_properties(BXQExtend bxqplatform bxqplatform_ui bxqplatform_scene PROPERTIES INSTALL_RPATH "$ORIGIN")
file(RELATIVE_PATH BXQ_BIN_TO_LIB /${CMAKE_INSTALL_BINDIR} /${CMAKE_INSTALL_LIBDIR})
set_target_properties(bxq PROPERTIES INSTALL_RPATH "$ORIGIN/${BXQ_BIN_TO_LIB}")

install(TARGETS BXQExtend bxqplatform bxqplatform_ui bxqplatform_scene
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(TARGETS bxq RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})

# The public headers: the host interface (what carries the export macro) and what those
# headers include, kept in the folders they are included by.
set(BXQ_PUBLIC_HEADERS
  plugin/BXQExtend.h plugin/BXQExtendGlobal.h plugin/BXQTranslations.h
  section_spec/EnSKRSectionType.h section_spec/GSectionPolyInfo.h section_spec/SKRWeldBallInfo.h
  section_spec/SKRSectionPolyInfoParser.h section_spec/SKRPolyParamManger.h
  section_data/SKRObjectRegistry.h section_data/SKRRegistryInstance.h section_data/SectionRepository.h
  section_data/SKRSectionPolyDBManager.h section_data/SKRSectionDbOperation.h
  section_data/SKRHotRollingSection.h section_data/SectionSchemeProvider.h
  section_geometry/SKRSectionPainter.h
  section_dialog/SKRSectionPolyDialog.h
  face_steel/BXQFaceSteelDialog.h face_steel/BXQFaceSteelData.h)
foreach(header ${BXQ_PUBLIC_HEADERS})
  get_filename_component(folder ${header} DIRECTORY)
  install(FILES ${PROJECT_SOURCE_DIR}/${header} DESTINATION ${BXQ_INSTALL_INCLUDEDIR}/${folder})
endforeach()
# The host platform's interface as the plug-in's headers name it ("ui/VantorFrame.h").
install(FILES platform/PlatformGlobal.h DESTINATION ${BXQ_INSTALL_INCLUDEDIR})
install(FILES platform/vmp/IVMPModel.h DESTINATION ${BXQ_INSTALL_INCLUDEDIR}/vmp)
install(FILES platform/ui/VantorFrame.h DESTINATION ${BXQ_INSTALL_INCLUDEDIR}/ui)

# Translations (also compiled into the plug-in) for hosts that load their own.
install(DIRECTORY ${CMAKE_BINARY_DIR}/plugin/i18n/ DESTINATION ${CMAKE_INSTALL_DATADIR}/bxq/translations
        FILES_MATCHING PATTERN "*.qm")

configure_package_config_file(${CMAKE_CURRENT_LIST_DIR}/BXQExtendConfig.cmake.in
  ${CMAKE_BINARY_DIR}/cmake/BXQExtendConfig.cmake
  INSTALL_DESTINATION ${BXQ_INSTALL_CMAKEDIR}
  PATH_VARS BXQ_INSTALL_INCLUDEDIR CMAKE_INSTALL_LIBDIR CMAKE_INSTALL_DATADIR)
write_basic_package_version_file(${CMAKE_BINARY_DIR}/cmake/BXQExtendConfigVersion.cmake
  VERSION ${PROJECT_VERSION} COMPATIBILITY SameMinorVersion)
install(FILES ${CMAKE_BINARY_DIR}/cmake/BXQExtendConfig.cmake ${CMAKE_BINARY_DIR}/cmake/BXQExtendConfigVersion.cmake
        DESTINATION ${BXQ_INSTALL_CMAKEDIR})
install(FILES LICENSE README.md DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/bxqextend)

# The Debian package: everything above under /usr, its run-time dependencies found by
# dpkg-shlibdeps; building a host against it also needs Qt's development files.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME bxqextend)
set(CPACK_PACKAGE_VENDOR "BXQExtend developers")
set(CPACK_PACKAGE_CONTACT "BXQExtend developers <bxqextend@localhost>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Steel-section library plug-in with its reference host bxq")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_RESOURCE_FILE_LICENSE ${PROJECT_SOURCE_DIR}/LICENSE)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_LIBRARY_OUTPUT_DIRECTORY})
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "qtbase5-dev, cmake")
set(CPACK_DEBIAN_COMPRESSION_TYPE gzip)
set(CPACK_PACKAGE_DIRECTORY ${CMAKE_BINARY_DIR}/package)
include(CPack)
