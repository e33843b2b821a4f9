#include "MirrorDump.h"

#include <algorithm>
#include <charconv>
#include <fstream>
#include <memory>
#include <ostream>
#include <string_view>
#include <utility>
#include <vector>

#include "Zet/ZetType.h"

namespace MirrorDump {
namespace {

using Zet::AttrKind;
using Zet::ZetAttr;
using Zet::ZetType;

void writeObject(std::ostream& os, Zet::PtrInterface const& object, int depth);

// The hashed collections are keyed by numbers: their text sorts as the
// numbers do, so that port 10 follows port 9.
bool keyTextLess(std::string_view a, std::string_view b) {
  long long x = 0;
  long long y = 0;
  auto const whole = [](std::string_view text, long long& value) {
    auto const [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    return error == std::errc() && end == text.data() + text.size();
  };
  if (whole(a, x) && whole(b, y)) {
    return x < y;
  }
  return a < b;
}

std::string indent(int depth) { return std::string(static_cast<std::size_t>(depth) * 2, ' '); }

// A value element read through its type's own methods: made, filled by the
// iterator, written, destroyed.
Zet::String valueText(ZetType const& type, Zet::GenericIf::Iterator::IteratorVTable const& table,
                      ZetAttr const* attribute, void* iterator) {
  auto const& methods = *type.valueMethods;
  std::vector<std::max_align_t> storage((type.size + sizeof(std::max_align_t) - 1) / sizeof(std::max_align_t));
  methods.genericIfConstruct(storage.data(), nullptr);
  table.iterObj(attribute, iterator, storage.data());
  Zet::String text = methods.genericIfStrRep(storage.data(), &type);
  methods.genericIfDestruct(storage.data());
  return text;
}

void writeCollection(std::ostream& os, ZetType const& type, Zet::PtrInterface const& object,
                     ZetAttr const& attribute, int depth) {
  void* const self = const_cast<Zet::PtrInterface*>(&object);
  std::size_t count = 0;
  Zet::attributeOp(&type, self, &attribute, Zet::GenericIf::AttributeOp::count, &count);
  os << indent(depth) << attribute.name << " (" << count << ")\n";
  Zet::GenericIf::Iterator::IteratorVTable const* table = nullptr;
  void* const iterator = type.genericIfIterator(self, &attribute, &table);
  // The elements with their keys' text; a collection of its own order is put in key text order.
  struct Element {
    Zet::String key;
    Zet::Ptr<Zet::PtrInterface const> entity;
    Zet::String text;
  };
  std::vector<Element> elements;
  for (; table->iterNonnull(&attribute, iterator); table->iterInc(&attribute, iterator)) {
    auto const* cursor = static_cast<Zet::GenericIf::Cursor const*>(iterator);
    Element e{cursor->keyStrRep(), Zet::Ptr<Zet::PtrInterface const>(cursor->entity()), {}};
    if (!e.entity) {
      ZetType const* const valueType = attribute.valueTypeNode;
      e.text = valueType && valueType->valueMethods ? valueText(*valueType, *table, &attribute, iterator)
                                                    : cursor->objStrRep();
    }
    elements.push_back(std::move(e));
  }
  table->iterDel(&attribute, iterator);
  if (!attribute.ordered) {
    std::stable_sort(elements.begin(), elements.end(),
                     [](Element const& a, Element const& b) { return keyTextLess(a.key.view(), b.key.view()); });
  }
  for (auto const& e : elements) {
    os << indent(depth + 1) << '[' << e.key << "] ";
    if (e.entity) {
      writeObject(os, *e.entity, depth + 1);
    } else {
      os << e.text << '\n';
    }
  }
}

void writeAttributes(std::ostream& os, ZetType const& type, Zet::PtrInterface const& object, int depth) {
  for (auto const& attribute : type.attributes) {
    switch (attribute.kind) {
      case AttrKind::method:
        break;
      case AttrKind::collection:
        writeCollection(os, type, object, attribute, depth);
        break;
      case AttrKind::owned:
        os << indent(depth) << attribute.name << ": ";
        if (auto const* owned = attribute.ownedObject(&object)) {
          writeObject(os, *owned, depth);
        } else {
          os << "None\n";
        }
        break;
      default:
        if (attribute.strRep) {
          os << indent(depth) << attribute.name << ": " << attribute.strRep(&object) << '\n';
        }
        break;
    }
  }
}

void writeObject(std::ostream& os, Zet::PtrInterface const& object, int depth) {
  ZetType const* const type = object.fwkType();
  os << type->name << '\n';
  // Base attributes first, as ids count.
  std::vector<ZetType const*> chain;
  for (ZetType const* t = type; t; t = t->base) {
    chain.insert(chain.begin(), t);
  }
  for (ZetType const* t : chain) {
    writeAttributes(os, *t, object, depth + 1);
  }
}

}  // namespace

void write(std::ostream& os, Zet::PtrInterface const& object) { writeObject(os, object, 0); }

bool writeToFile(std::string const& path, Zet::PtrInterface const& object) {
  std::ofstream out(path, std::ios::trunc);
  write(out, object);
  out.close();
  return static_cast<bool>(out);
}

}  // namespace MirrorDump
