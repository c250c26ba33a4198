# The Debian package of a workstation (make package, or cpack -G DEB in the
# build folder): installed under /usr, the program folder /var/lib/tavonel
# made by its postinst for the group tavonel.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME tavonel)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "agenda des rendez-vous d'un cabinet médical")
set(CPACK_PACKAGE_DESCRIPTION
  "Tavonel tient l'agenda d'un cabinet médical : semaine de travail colorée
par les règles horaires du cabinet, fiches patients, salle d'attente, ticket
de rendez-vous, rappels par SMS (modem GSM) et par courriel. Plusieurs postes
partagent un agenda posé dans un dossier commun.")
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
# Whoever builds the package for a practice names himself here.
set(TAVONEL_MAINTENEUR "Développeurs de Tavonel <tavonel@localhost>" CACHE STRING "Maintainer of the Debian package")
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "${TAVONEL_MAINTENEUR}")
set(CPACK_DEBIAN_PACKAGE_SECTION misc)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
# The libraries the programs link to are found by dpkg-shlibdeps; what Qt
# loads at run time (the display, the SQL drivers, its French texts) and the
# tools the program calls are listed here.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_DEPENDS
  "adduser, qt6-qpa-plugins, libqt6sql6-sqlite, libqt6sql6-odbc, libqt6sql6-mysql, qt6-translations-l10n, unixodbc, xdg-utils")
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "fonts-liberation")
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "odbc-mariadb, mariadb-client")
set(CPACK_DEBIAN_PACKAGE_CONTROL_EXTRA
  "${CMAKE_SOURCE_DIR}/data/debian/postinst;${CMAKE_SOURCE_DIR}/data/debian/postrm")
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)

# Debian wants a compressed change log beside the copyright.
file(WRITE ${CMAKE_BINARY_DIR}/changelog
  "tavonel (${PROJECT_VERSION}) unstable; urgency=medium\n\n"
  "  * Paquet d'un poste du cabinet.\n\n"
  " -- ${CPACK_DEBIAN_PACKAGE_MAINTAINER}  Tue, 24 Nov 2026 00:00:00 +0000\n")
execute_process(COMMAND gzip -9 -n -f ${CMAKE_BINARY_DIR}/changelog)

include(CPack)
