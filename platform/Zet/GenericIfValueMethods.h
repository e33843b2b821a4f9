#pragma once
// The table of GenericIf::ValueMethods for a value type T, written once for
// all: T needs a default constructor, a copy, a text form (valueToStrep, found
// by Zet::strepOf) and a parsing constructor (Zet::readValue).

#include <memory>

#include "Zet/GenericIf.h"
#include "Zet/TextForm.h"

namespace Zet::GenericIfImpl {

template <class T>
struct GenericIfValueMethods {
  static constexpr GenericIf::ValueMethods table{
      .genericIfConstruct =
          [](void* destination, void const* source) {
            if (source) {
              std::construct_at(static_cast<T*>(destination), *static_cast<T const*>(source));
            } else {
              std::construct_at(static_cast<T*>(destination));
            }
          },
      .genericIfDestruct = [](void* value) { std::destroy_at(static_cast<T*>(value)); },
      .genericIfStrepToValue =
          [](void* destination, String const& text, ZetType const*) {
            *static_cast<T*>(destination) = strepToValue<T>(text);
          },
      .genericIfStrRep = [](void const* value, ZetType const*) { return strepOf(*static_cast<T const*>(value)); },
      .genericIfHash = [](void const*, ZetType const* type) -> std::size_t { throwUnhashableException(type); },
      .genericIfVoidPtrIs = &voidPtrIs,
  };
};

}  // namespace Zet::GenericIfImpl
