#include "Statebase/Statebase.h"

#include <map>

namespace Statebase {
namespace {
std::map<std::string, Zet::Ptr<Zet::Entity>, std::less<>>& mounts() {
  static std::map<std::string, Zet::Ptr<Zet::Entity>, std::less<>> m;
  return m;
}
}  // namespace

void entityIs(std::string_view path, Zet::Ptr<Zet::Entity> const& entity) {
  mounts().insert_or_assign(std::string(path), entity);
}

Zet::Ptr<Zet::Entity> entity(std::string_view path) {
  auto const& m = mounts();
  auto it = m.find(path);
  return it == m.end() ? Zet::Ptr<Zet::Entity>() : it->second;
}

void entityDel(std::string_view path) {
  auto& m = mounts();
  if (auto it = m.find(path); it != m.end()) {
    m.erase(it);
  }
}

std::vector<std::string> paths() {
  std::vector<std::string> result;
  for (auto const& [path, e] : mounts()) {
    result.push_back(path);
  }
  return result;
}

}  // namespace Statebase
