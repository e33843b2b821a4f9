#include "PortDriver.h"

#include <initializer_list>
#include <iostream>

#include "PortStatusSm.h"
#include "Statebase/Statebase.h"
#include "Zet/Assert.h"
#include "Zet/ZetType.h"

namespace {

using Zet::GenericIf::AttributeOp;

Zet::ZetType const& typeNamed(char const* name) {
  Zet::ZetType const* const type = Zet::typeNode(name);
  if (!type) {
    std::cerr << "PortDriver: the plug-in describes no type " << name << std::endl;
  }
  ZET_ASSERT(type);
  return *type;
}

// The attribute `name` of `object`, reached through its description alone; an
// operation the description refuses means the host and the plug-in disagree,
// which no port can survive.
void attributeOp(Zet::PtrInterface* object, char const* name, AttributeOp op, void* result = nullptr,
                 void* key = nullptr, std::initializer_list<void*> arguments = {}) {
  Zet::ZetType const* const type = object->fwkType();
  Zet::ZetAttr const* const attribute = type->attribute(name);
  if (!attribute) {
    std::cerr << "PortDriver: " << type->name << " has no attribute " << name << std::endl;
  }
  ZET_ASSERT(attribute);
  void* const* const pointers = arguments.size() ? std::data(arguments) : nullptr;
  int const code = Zet::attributeOp(type, object, attribute, op, result, key, const_cast<void**>(pointers));
  ZET_ASSERT(code == Zet::GenericIf::done);
}

// A port's rows, in the order of the MIB's port tables.
constexpr char const* portRows[] = {"portConfig", "portStatus", "localPort"};

}  // namespace

PortDriver::PortDriver() {
  Zet::Ptr<Zet::Entity> const root = typeNamed("Lldp::Snmp::Root").newEntityForDir("root", nullptr);
  root_ = Zet::ptrCast<Lldp::Snmp::Root>(root);
  ZET_ASSERT(root_);
  Statebase::entityIs(rootPath, root_);
}

PortDriver::~PortDriver() {
  if (followed_) {
    followed_->portObserverIs(nullptr);
  }
  if (Statebase::entity(rootPath) == root_) {
    Statebase::entityDel(rootPath);
  }
}

void PortDriver::follow(Reconciler& reconciler) {
  ZET_ASSERT(!followed_ && reconciler.status());
  Zet::Ptr<Lldp::AllStatus const> status = reconciler.status();
  Zet::Ptr<Lldp::LocalSystem const> localSystem = reconciler.localSystem();
  Zet::Ptr<Lldp::Config const> config = reconciler.config();
  Zet::Ptr<Lldp::Snmp::Root> root = root_;
  attributeOp(root_.get(), "lldpSm", AttributeOp::set, &lldpSm_, nullptr, {&status, &localSystem, &config, &root});
  for (auto const& port : reconciler.ports()) {
    onPortJoined(port);
  }
  reconciler.portObserverIs(this);
  followed_ = &reconciler;
}

void PortDriver::onPortJoined(Reconciler::Port const& port) {
  Interface::EthPortId number = port.number;
  Zet::Ptr<Lldp::PortConfig const> portConfig = port.portConfig;
  Zet::Ptr<Lldp::PortStatus const> portStatus = port.portStatus;
  Zet::Ptr<Lldp::LocalPort const> localPort = port.localPort;
  attributeOp(root_.get(), portRows[0], AttributeOp::set, nullptr, nullptr, {&number, &portConfig});
  attributeOp(root_.get(), portRows[1], AttributeOp::set, nullptr, nullptr, {&number, &portStatus});
  attributeOp(root_.get(), portRows[2], AttributeOp::set, nullptr, nullptr, {&number, &localPort});
  Zet::Ptr<Lldp::Snmp::Root> root = root_;
  attributeOp(root_.get(), "portStatusSm", AttributeOp::set, nullptr, nullptr, {&number, &portStatus, &root});
  Ondo::IntfId name = port.name;
  attributeOp(lldpSm_.get(), "handleLocalPort", AttributeOp::call, nullptr, nullptr, {&name, &number});
}

void PortDriver::onPortLeaving(Reconciler::Port const& port) {
  Ondo::IntfId name = port.name;
  Zet::Ptr<Lldp::Snmp::PortStatusSm> sm;
  attributeOp(root_.get(), "portStatusSm", AttributeOp::get, &sm, &name);
  // Closed while the port still lists its neighbours: the close walks that list.
  if (sm) {
    attributeOp(sm.get(), "doClose", AttributeOp::call);
    attributeOp(root_.get(), "portStatusSm", AttributeOp::del, nullptr, &name);
  }
  Interface::EthPortId number = port.number;
  for (char const* row : portRows) {
    attributeOp(root_.get(), row, AttributeOp::del, nullptr, &number);
  }
}

void PortDriver::onPortLeft(Reconciler::Port const& port) {
  Ondo::IntfId name = port.name;
  Interface::EthPortId number = port.number;
  attributeOp(lldpSm_.get(), "handleLocalPort", AttributeOp::call, nullptr, nullptr, {&name, &number});
}
