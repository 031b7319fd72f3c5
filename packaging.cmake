# `make install` and `make package`: the two programs, the menu entry, the icons, the
# software-centre description and the daily rebuild's user service and timer, in the XDG places
# under the prefix. The package enables the timer for every user and takes it away again.
include(GNUInstallDirs)

install(TARGETS sorvanta sorvanta-find RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME sorvanta)
set(CPACK_PACKAGE_VENDOR Wendlemark)
set(CPACK_PACKAGE_CONTACT "Wendlemark <sorvanta@wendlemark.invalid>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "find files and folders by name at once")
set(CPACK_PACKAGE_DESCRIPTION
    "Sorvanta walks every fixed disk into one flat index file, loads it whole into
memory and finds files and folders by name at once, with wildcards or regular
expressions, in a sortable list of name, folder, size and date.
sorvanta-find searches the same index from a terminal.")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_CONTROL_EXTRA
    ${PROJECT_SOURCE_DIR}/desktop/debian/postinst ${PROJECT_SOURCE_DIR}/desktop/debian/prerm
    ${PROJECT_SOURCE_DIR}/desktop/debian/postrm)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
include(CPack)
