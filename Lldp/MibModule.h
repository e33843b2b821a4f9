#pragma once
// What one MIB module keeps per SNMP context: the registrations it handed to
// net-snmp, and the heads of the column-info chains that net-snmp never frees.
// unregister() takes all of a context back out.

#include <list>
#include <map>

#include <net-snmp/net-snmp-config.h>
#include <net-snmp/net-snmp-includes.h>
#include <net-snmp/agent/net-snmp-agent-includes.h>

#include "Zet/String.h"

class MibModule {
 public:
  explicit MibModule(char const* name) : name_(name) {}
  MibModule(MibModule const&) = delete;
  MibModule& operator=(MibModule const&) = delete;

  char const* name() const { return name_; }

  void registrationIs(Zet::String const& context, netsnmp_handler_registration* registration) {
    contextRegistrations_[context].push_back(registration);
  }
  void columnInfoIs(Zet::String const& context, netsnmp_column_info* columnInfo) {
    contextColumnInfos_[context].push_back(columnInfo);
  }

  // Unregisters every handler of `context` from net-snmp, frees its column
  // infos, forgets the context and tells the host the module is down there.
  void unregister(Zet::String const& context);

  bool hasContext(Zet::String const& context) const {
    return contextRegistrations_.count(context) != 0 || contextColumnInfos_.count(context) != 0;
  }
  std::size_t registrationCount(Zet::String const& context) const;

 private:
  char const* name_;
  std::map<Zet::String, std::list<netsnmp_handler_registration*>> contextRegistrations_;
  std::map<Zet::String, std::list<netsnmp_column_info*>> contextColumnInfos_;
};
