# The Debian packages: packaging/build.sh runs cpack and puts them where they are wanted.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME vlk-wlan-config)
set(CPACK_PACKAGE_CONTACT "Wi-Fi configuration maintainers <maintainers@wlan-config.invalid>")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_COMPONENTS_ALL ${components})
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SOURCE vlk-wlan-config)
set(CPACK_DEBIAN_PACKAGE_SECTION net)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
find_program(DPKG_SHLIBDEPS dpkg-shlibdeps)
if(DPKG_SHLIBDEPS)
  set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
endif()

set(CPACK_DEBIAN_SERVER_PACKAGE_NAME ${package_server})
set(CPACK_DEBIAN_SERVER_DESCRIPTION "Wi-Fi configuration server of a gateway
A daemon that offers 340 remote procedures over ONC RPC and turns each of
them into operations on the Wi-Fi driver's platform: its settings, its tools
and scripts, its ioctls.

It is of use on a gateway with that driver. Installing it starts nothing.")
# The client is run by the server itself; pgrep and ps, killall are among its tools. A gateway's portmapper need not be
# a package: it only has to be called portmap.
set(CPACK_DEBIAN_SERVER_PACKAGE_DEPENDS "${package_client} (= ${PROJECT_VERSION}), procps, psmisc")
set(CPACK_DEBIAN_SERVER_PACKAGE_RECOMMENDS rpcbind)
set(CPACK_DEBIAN_SERVER_PACKAGE_CONTROL_EXTRA
  ${CMAKE_CURRENT_BINARY_DIR}/control/postinst ${CMAKE_CURRENT_BINARY_DIR}/control/prerm
  ${CMAKE_CURRENT_BINARY_DIR}/control/postrm ${CMAKE_CURRENT_BINARY_DIR}/control/conffiles)

set(CPACK_DEBIAN_CLIENT_PACKAGE_NAME ${package_client})
set(CPACK_DEBIAN_CLIENT_DESCRIPTION "client of the Wi-Fi configuration server
Calls any of the server's 340 procedures from a shell: one operation with its
arguments a command, the answer printed, success or failure as exit status.")

set(CPACK_DEBIAN_GATEWAY_PACKAGE_NAME ${package_gateway})
set(CPACK_DEBIAN_GATEWAY_DESCRIPTION "simulated gateway for the Wi-Fi configuration server
Runs the server and its client for real on any Linux machine, in namespaces
of their own, with a simulated Wi-Fi driver, its tools and its daemons
around them. Everything that reaches the platform is written to a journal,
and whatever can go wrong there can be switched on by name.")
set(CPACK_DEBIAN_GATEWAY_PACKAGE_SECTION devel)
set(CPACK_DEBIAN_GATEWAY_PACKAGE_DEPENDS
  "${package_server} (= ${PROJECT_VERSION}), ${package_client} (= ${PROJECT_VERSION})")
# Its portmapper is this package's program, run in its own network; one that is named with --rpcbind will do as well.
set(CPACK_DEBIAN_GATEWAY_PACKAGE_RECOMMENDS rpcbind)
# It carries the gateway where namespaces are refused.
set(CPACK_DEBIAN_GATEWAY_PACKAGE_SUGGESTS proot)

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME ${package_development})
set(CPACK_DEBIAN_DEVELOPMENT_DESCRIPTION "development files for the Wi-Fi configuration server
The interface of the server's 340 procedures for rpcgen, for clients in
other languages, and the documents for developers.")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION devel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_ARCHITECTURE all)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SHLIBDEPS OFF)

# The scripts under the names that dpkg wants, and what an administrator may change.
foreach(script postinst prerm postrm)
  configure_file(debian/server.${script} control/${script} COPYONLY)
endforeach()
file(WRITE ${CMAKE_CURRENT_BINARY_DIR}/control/conffiles "/etc/init.d/vlk-wlan-config\n")

# Each package's changelog.
add_custom_command(OUTPUT ${CMAKE_CURRENT_BINARY_DIR}/changelog.gz
  COMMAND sh -c "\"$1\" -9n <\"$2\" >\"$3\"" sh ${GZIP} ${CMAKE_CURRENT_SOURCE_DIR}/changelog
          ${CMAKE_CURRENT_BINARY_DIR}/changelog.gz
  DEPENDS changelog VERBATIM)
add_custom_target(compressed_changelog ALL DEPENDS ${CMAKE_CURRENT_BINARY_DIR}/changelog.gz)
foreach(component ${components})
  install(FILES ${CMAKE_CURRENT_BINARY_DIR}/changelog.gz
          DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${package_${component}} COMPONENT ${component})
endforeach()

include(CPack)
