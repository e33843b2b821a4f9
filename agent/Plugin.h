#pragma once
// The loaded plug-in: opened with dlopen, its modules brought up in a context
// through the records its static initialisers left, and taken down again.

#include <string>

#include "Zet/String.h"

class Plugin {
 public:
  // Opens the shared object; throws std::runtime_error with dlerror's text.
  explicit Plugin(std::string const& path);
  ~Plugin();
  Plugin(Plugin const&) = delete;
  Plugin& operator=(Plugin const&) = delete;

  // Calls initHandler(context) on each module, in the order the plug-in recorded them.
  void initModules(Zet::String const& context);
  // Calls unregister_<module>(context) for every module that is up in a context.
  void unregisterModules();

  // The default place: beside this program in the build tree, or where it is installed.
  static std::string defaultPath();

 private:
  void* handle_;
};
