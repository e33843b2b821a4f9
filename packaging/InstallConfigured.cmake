# Run by `cmake --install` and by CPack: the files that name installed paths,
# made for the prefix of this install (CMAKE_INSTALL_PREFIX is the install's,
# not the configure's). LLDPSNMP_PACKAGING_DIR and LLDPSNMP_VERSION are set
# by the install step before this script.
set(PREFIX "${CMAKE_INSTALL_PREFIX}")
set(BINDIR "${PREFIX}/bin")
set(DATADIR "${PREFIX}/share/lldp-snmp-agent")
set(DOCDIR "${PREFIX}/share/doc/lldp-snmp-agent")
set(VERSION "${LLDPSNMP_VERSION}")
set(root "$ENV{DESTDIR}${PREFIX}")
foreach(unit lldp-snmp-agent.service lldp-snmp-agent-snmpd.service lldp-snmp-agent-agentx.service)
  message(STATUS "Installing: ${root}/lib/systemd/system/${unit}")
  configure_file("${LLDPSNMP_PACKAGING_DIR}/systemd/${unit}.in" "${root}/lib/systemd/system/${unit}" @ONLY)
endforeach()
message(STATUS "Installing: ${root}/share/man/man8/lldp-snmp-agent.8")
configure_file("${LLDPSNMP_PACKAGING_DIR}/lldp-snmp-agent.8.in" "${root}/share/man/man8/lldp-snmp-agent.8" @ONLY)
message(STATUS "Installing: ${root}/share/snmp/snmp.conf")
configure_file("${LLDPSNMP_PACKAGING_DIR}/net-snmp/snmp.conf.in" "${root}/share/snmp/snmp.conf" @ONLY)
