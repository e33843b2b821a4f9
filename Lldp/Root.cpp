#define ZET_UNIT "LldpSnmp"

#include "Root.h"

#include <string>

#include "Zet/Exception.h"
#include "Zet/TextForm.h"

namespace Lldp::Snmp {

Zet::Ptr<Root> Root::RootIs(Zet::Name name) {
  Zet::Ptr<Root> root(new Root(std::move(name)));
  root->hasNotificationActiveIs(true);
  return root;
}

Zet::Ptr<Root> rootFactory(Zet::Name name) { return Root::RootIs(std::move(name)); }

Root::~Root() {
  // Rows first, so that no row outlives the Root still pointing at it as parent.
  portConfigDelAll();
  portStatusDelAll();
  localPortDelAll();
  localManagementAddressDelAll();
  remoteSystemDelAll();
}

template <class Row, class Key, class Inbound>
Zet::Ptr<Row> Root::rowIs(RowMap<Row>& map, Key const& key, Zet::Ptr<Inbound const> const& ptr) {
  if (auto existing = map[key]) {
    if (existing->ptr() == ptr) {
      return existing;
    }
    Zet::throwNameInUseException(
        "Reinstantiating the entity with fullName " + Zet::valueToStrep(existing->fullName()).stdString() +
        " where constructor parameter attribute 'ptr' has a different value of " +
        Zet::valueToStrep(ptr).stdString() + " than the current value of " +
        Zet::valueToStrep(existing->ptr()).stdString() + " not allowed");
  }
  auto row = Zet::makePtr<Row>(key, ptr);
  row->hasNotificationActiveIs(true);
  map.memberIs(row);
  row->parentIs(this);
  return row;
}

#define LLDP_ROOT_ROW_IS(name, Row, Key, Inbound)                                              \
  Zet::Ptr<Row> Root::name##Is(Key const& key, Zet::Ptr<Inbound const> const& ptr) { \
    return rowIs<Row>(name##_, key, ptr);                                     \
  }
LLDP_ROOT_ROWS(LLDP_ROOT_ROW_IS)
#undef LLDP_ROOT_ROW_IS

Zet::Ptr<LocalManagementAddress> Root::localManagementAddressIs(LocalManagementAddress::Key const& key) {
  if (auto existing = localManagementAddress_[key]) {
    return existing;
  }
  // The record starts as the default one; the key is not copied into it.
  auto row = Zet::makePtr<LocalManagementAddress>(key);
  row->hasNotificationActiveIs(true);
  localManagementAddress_.memberIs(row);
  row->parentIs(this);
  return row;
}

}  // namespace Lldp::Snmp
