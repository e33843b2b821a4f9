#include "Plugin.h"

#include <dlfcn.h>

#include <filesystem>
#include <stdexcept>

#include "Snmp/AutoRegistree.h"
#include "Snmp/MibContext.h"

Plugin::Plugin(std::string const& path) : handle_(dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL)) {
  if (!handle_) {
    throw std::runtime_error(std::string("cannot load plug-in: ") + dlerror());
  }
}

Plugin::~Plugin() {
  unregisterModules();
  dlclose(handle_);
}

void Plugin::initModules(Zet::String const& context) {
  for (auto* registration : Snmp::AutoRegistree::registrations()) {
    registration->initHandler(context);
  }
}

void Plugin::unregisterModules() {
  // The modules record themselves per context as they come up; that record is
  // how the host knows whose unregister_<module> to call.
  using Unregister = void (*)(Zet::String);
  for (auto const& [context, mib] : Snmp::mibContexts()) {
    std::string const symbol = "unregister_" + mib.stdString();
    if (auto* unregister = reinterpret_cast<Unregister>(dlsym(handle_, symbol.c_str()))) {
      unregister(context);
    } else {
      Snmp::unregisterMibContext(context, mib);
    }
  }
}

std::string Plugin::defaultPath() {
  namespace fs = std::filesystem;
  std::error_code ec;
  auto const self = fs::read_symlink("/proc/self/exe", ec).parent_path();
  for (auto const& candidate : {self / "../Lldp/LldpSnmp.so", self / "../lib/lldp-snmp-agent/LldpSnmp.so"}) {
    if (fs::exists(candidate, ec)) {
      return fs::weakly_canonical(candidate, ec).string();
    }
  }
  return (self / "../lib/lldp-snmp-agent/LldpSnmp.so").string();
}
