// The mirror's type descriptions: every one against its class and against the
// listing in data/type-descriptions.txt, then the generic operations as a
// host uses them (by attribute name), with their refusals and edge cases.

#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <tuple>
#include <vector>

#include "Interface/EthPortId.h"
#include "LldpAgent/PortConfig.h"
#include "LldpSm.h"
#include "MirrorKeys.h"
#include "MirrorRows.h"
#include "PortStatusSm.h"
#include "RemoteRecords.h"
#include "RemoteSystemSm.h"
#include "Root.h"
#include "Zet/Exception.h"
#include "Zet/GenericIf.h"
#include "Zet/Ptr.h"
#include "Zet/ZetType.h"

namespace {

using namespace Lldp::Snmp;
using Interface::EthPortId;
using Zet::AttrKind;
using Zet::GenericIf::AttributeOp;

// The classes in the order their descriptions are registered.
using Described =
    std::tuple<LldpSm, PortList, RemoteUnknownTlv, RemoteUnknownTlvKey, RemoteUnknownOrgDefTlv,
               RemoteUnknownOrgDefTlvKey, RemoteSystem, RemoteSystemKey, Root, PortConfig, PortStatus, RemoteSystemSm,
               LocalManagementAddress, RemoteProtocolIdentityInfo, RemoteProtocolIdentityInfoKey,
               RemoteManagementAddress, RemoteManagementAddressKey, LocalPort, RemoteVlanName, RemoteVlanNameKey,
               PortStatusSm, RemotePortAndProtocolVlan, RemotePortAndProtocolVlanKey>;

char const* kindName(AttrKind kind) {
  constexpr char const* names[] = {"ctorParam", "derived", "stored", "owned", "collection", "method"};
  return names[static_cast<int>(kind)];
}

// One line per type, one per attribute: what a reader of the description sees.
std::string listing(Zet::ZetType const& type) {
  std::ostringstream out;
  out << type.name << " : " << (type.base ? type.base->name : "-") << " (";
  for (auto const& p : type.ctorParams) {
    out << (&p == type.ctorParams.data() ? "" : ", ") << p.name << ": " << p.typeName;
  }
  out << ")\n";
  for (auto const& a : type.attributes) {
    out << "  " << std::hex << std::showbase << a.id << std::dec << ' ' << a.name << ' ' << kindName(a.kind);
    if (a.kind == AttrKind::collection) {
      out << " [" << a.keyName << ']';
    }
    if (!a.args.empty() && a.kind != AttrKind::collection && a.kind != AttrKind::owned) {
      out << " (";
      for (auto const& arg : a.args) {
        out << (&arg == a.args.data() ? "" : ", ") << arg.name;
      }
      out << ')';
    }
    out << '\n';
  }
  return out.str();
}

std::string fileText(std::filesystem::path const& path) {
  std::ifstream in(path);
  return {std::istreambuf_iterator<char>(in), {}};
}

Zet::ZetAttr const& attr(Zet::ZetType const& type, char const* name) {
  Zet::ZetAttr const* a = type.attribute(name);
  EXPECT_NE(a, nullptr) << type.name << "." << name;
  return *a;
}

TEST(TypeDescriptions, EveryTypeMatchesItsClassAndTheListing) {
  auto const& nodes = Zet::typeNodes();
  ASSERT_EQ(nodes.size(), std::tuple_size_v<Described>);
  std::string all;
  [&]<std::size_t... I>(std::index_sequence<I...>) {
    (
        [&] {
          using T = std::tuple_element_t<I, Described>;
          Zet::ZetType const& type = T::_zetType;
          EXPECT_EQ(nodes[I], &type) << type.name;
          EXPECT_EQ(Zet::typeNode(type.name), &type);
          EXPECT_EQ(type.size, sizeof(T)) << type.name;
          EXPECT_EQ(type.isPolymorphic(), std::is_polymorphic_v<T>) << type.name;
          // Ids run on from the level's first, one per attribute, and each kind allows its operations only.
          std::uint32_t const first = std::is_base_of_v<Zet::Entity, T>         ? 0x102
                                      : std::is_base_of_v<Zet::PtrInterface, T> ? 0x82
                                                                                : 2;
          for (std::size_t i = 0; i < type.attrCount(); ++i) {
            EXPECT_EQ(type.attributes[i].id, first + i) << type.name << "." << type.attributes[i].name;
            EXPECT_EQ(type.attributes[i].owner, &type);
          }
          EXPECT_EQ(type.genericIfIterator != nullptr, std::is_polymorphic_v<T>);
          EXPECT_EQ(type.valueMethods != nullptr, !std::is_polymorphic_v<T>);
          all += listing(type);
        }(),
        ...);
  }(std::make_index_sequence<std::tuple_size_v<Described>>{});
  EXPECT_EQ(all, fileText(std::filesystem::path(LLDP_SNMP_SOURCE_DIR) / "tests/Lldp/data/type-descriptions.txt"));
}

// A value type's every readable attribute reads on a value made by the description.
TEST(TypeDescriptions, ValueTypesAreMadeAndReadThroughTheirDescriptions) {
  int valueTypes = 0;
  for (Zet::ZetType const* type : Zet::typeNodes()) {
    if (!type->valueMethods) {
      continue;
    }
    ++valueTypes;
    std::vector<std::max_align_t> storage(type->size / sizeof(std::max_align_t) + 1);
    type->valueMethods->genericIfConstruct(storage.data(), nullptr);
    bool isDefault = false;
    EXPECT_EQ(type->genericIfAttributeOp(&isDefault, storage.data(), nullptr, AttributeOp::isDefault, nullptr, nullptr),
              0);
    EXPECT_TRUE(isDefault) << type->name;
    Zet::String const text = type->valueMethods->genericIfStrRep(storage.data(), type);
    EXPECT_NE(text.view().find(type->name), std::string_view::npos) << text;
    for (auto const& a : type->attributes) {
      EXPECT_FALSE(a.strRep(storage.data()).view().empty()) << type->name << "." << a.name;
    }
    EXPECT_THROW(type->valueMethods->genericIfHash(storage.data(), type), Zet::GenericIfImpl::UnhashableException)
        << type->name;
    // Keys are ordered; the records that hold them are not.
    bool less = true;
    bool const isKey = std::string_view(type->name).ends_with("::Key");
    EXPECT_EQ(type->genericIfAttributeOp(&less, storage.data(), nullptr, AttributeOp::less, storage.data(), nullptr),
              isKey ? 0 : 1)
        << type->name;
    EXPECT_FALSE(less && isKey);
    EXPECT_EQ(type->valueMethods->genericIfVoidPtrIs(storage.data(), type, type), storage.data());
    EXPECT_THROW(type->valueMethods->genericIfVoidPtrIs(storage.data(), type, &Root::_zetType),
                 Zet::GenericIfImpl::TypeException);
    type->valueMethods->genericIfDestruct(storage.data());
  }
  EXPECT_EQ(valueTypes, 13);
}

// A description that contradicts its kind ends the process with the assertion's own text.
TEST(TypeDescriptionsDeathTest, PointerAdjustmentAssertsWhatEachKindOfTypeIs) {
  Zet::ZetType polymorphicValue = Lldp::Snmp::RemoteVlanName::_zetType;
  polymorphicValue.polymorphic = true;
  Zet::ZetType plainEntity = Root::_zetType;
  plainEntity.polymorphic = false;
  int object = 0;
  EXPECT_DEATH(Zet::GenericIfImpl::voidPtrIs(&object, &polymorphicValue, &Root::_zetType),
               "Assertion `!t->isPolymorphic\\(\\)' failed");
  EXPECT_DEATH(Zet::GenericIfImpl::voidPtrIs(&object, &plainEntity, &Root::_zetType),
               "Assertion `type->isPolymorphic\\(\\)' failed");
}

TEST(TypeDescriptions, NullVlanNameKeyIsVlanOne) {
  RemoteVlanNameKey key(EthPortId(4), 9, Bridging::VlanId(7));
  RemoteVlanNameKey::_zetType.valueMethods->genericIfConstruct(&key, nullptr);
  EXPECT_EQ(key.vlanId.value(), 1);
  RemoteVlanNameKey copy;
  RemoteVlanNameKey const source(EthPortId(4), 9, Bridging::VlanId(7));
  RemoteVlanNameKey::_zetType.valueMethods->genericIfConstruct(&copy, &source);
  EXPECT_EQ(copy, source);
  RemoteVlanNameKey read;
  RemoteVlanNameKey::_zetType.valueMethods->genericIfStrepToValue(&read, valueToStrep(source),
                                                                   &RemoteVlanNameKey::_zetType);
  EXPECT_EQ(read, source);
}

class GenericRoot : public ::testing::Test {
 protected:
  void SetUp() override {
    root_ = Zet::ptrCast<Root>(Root::_zetType.newEntityForDir("root", nullptr));
    ASSERT_TRUE(root_);
  }
  int op(Zet::PtrInterface* object, char const* name, AttributeOp o, void* result, void* key = nullptr,
         std::vector<void*> arguments = {}) {
    Zet::ZetType const* type = object->fwkType();
    return Zet::attributeOp(type, object, &attr(*type, name), o, result, key, arguments.data());
  }
  Zet::Ptr<Root> root_;
};

TEST_F(GenericRoot, RowsAreMadeReadAndRemovedByName) {
  EthPortId port(5);
  Zet::Ptr<Lldp::PortConfig const> source = Zet::makePtr<Lldp::PortConfig>();
  Zet::Ptr<PortConfig> made;
  ASSERT_EQ(op(root_.get(), "portConfig", AttributeOp::set, &made, nullptr, {&port, &source}), 0);
  EXPECT_EQ(made, root_->portConfig(port));
  EXPECT_EQ(made->fwkType(), &PortConfig::_zetType);
  std::size_t count = 0;
  bool has = false;
  std::uint32_t version = 0;
  EXPECT_EQ(op(root_.get(), "portConfig", AttributeOp::count, &count), 0);
  EXPECT_EQ(op(root_.get(), "portConfig", AttributeOp::has, &has, &port), 0);
  EXPECT_EQ(op(root_.get(), "portConfig", AttributeOp::version, &version), 0);
  EXPECT_EQ(count, 1u);
  EXPECT_TRUE(has);
  EXPECT_EQ(version, root_->portConfig().version());

  // A derived attribute reads, and refuses a set without a change.
  std::uint16_t portNum = 0;
  EXPECT_EQ(op(made.get(), "portNum", AttributeOp::get, &portNum), 0);
  EXPECT_EQ(portNum, 5);
  std::uint16_t other = 9;
  EXPECT_EQ(op(made.get(), "portNum", AttributeOp::set, nullptr, nullptr, {&other}), 1);
  EXPECT_EQ(made->portNum(), 5);
  // An attribute of another type is no attribute of this one.
  EXPECT_EQ(PortConfig::_zetType.genericIfAttributeOp(&portNum, made.get(), &attr(PortStatus::_zetType, "portNum"),
                                                      AttributeOp::get, nullptr, nullptr),
            2);
  // Methods are only called, collections never called.
  EXPECT_EQ(op(root_.get(), "portConfig", AttributeOp::call, nullptr), 1);

  // The name-in-use exception of the collection comes out as it is.
  Zet::Ptr<Lldp::PortConfig const> another = Zet::makePtr<Lldp::PortConfig>();
  EXPECT_THROW(op(root_.get(), "portConfig", AttributeOp::set, nullptr, nullptr, {&port, &another}),
               Zet::NameInUseException);

  Zet::Ptr<PortConfig> removed;
  EXPECT_EQ(op(root_.get(), "portConfig", AttributeOp::del, &removed, &port), 0);
  EXPECT_EQ(removed, made);
  EXPECT_EQ(op(root_.get(), "portConfig", AttributeOp::has, &has, &port), 0);
  EXPECT_FALSE(has);
}

TEST_F(GenericRoot, ValueRecordsAreSetAsValuesAndWalkedInKeyOrderThroughChanges) {
  Zet::ZetAttr const& vlanNames = attr(Root::_zetType, "remoteVlanName");
  for (std::uint16_t vlan : {30, 10, 20, 40}) {
    RemoteVlanName record({EthPortId(2), 1, Bridging::VlanId(vlan)}, nullptr, {});
    ASSERT_EQ(Zet::attributeOp(&Root::_zetType, root_.get(), &vlanNames, AttributeOp::set, nullptr, nullptr, &record),
              0);
  }
  Zet::GenericIf::Iterator::IteratorVTable const* table = nullptr;
  void* const it = Root::_zetType.genericIfIterator(root_.get(), &vlanNames, &table);
  ASSERT_TRUE(it && table);
  std::vector<int> seen;
  for (; table->iterNonnull(&vlanNames, it); table->iterInc(&vlanNames, it)) {
    RemoteVlanName::Key key;
    table->iterKey(&vlanNames, it, &key);
    RemoteVlanName element;
    table->iterObj(&vlanNames, it, &element);
    EXPECT_EQ(element.key, key);
    seen.push_back(key.vlanId.value());
    // Deleting the element under the iterator and adding one behind it: the walk goes on after it.
    if (key.vlanId.value() == 20) {
      root_->remoteVlanNameDel(key);
      root_->remoteVlanNameIs({{EthPortId(2), 1, Bridging::VlanId(5)}, nullptr, {}});
    }
  }
  table->iterDel(&vlanNames, it);
  table->iterDel(&vlanNames, nullptr);
  EXPECT_EQ(seen, (std::vector<int>{10, 20, 30, 40}));
  // Not a collection: no iterator.
  EXPECT_EQ(Root::_zetType.genericIfIterator(root_.get(), &attr(Root::_zetType, "lldpSm"), &table), nullptr);
}

}  // namespace
