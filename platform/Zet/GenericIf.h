#pragma once
// The generic interface of described types (see Zet/ZetType.h): the operation
// codes of genericIfAttributeOp, the iterator operations over a collection, and
// the operations every value type offers.

#include <cstddef>
#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>

#include "Zet/String.h"

namespace Zet {

struct ZetType;
struct ZetAttr;

namespace GenericIf {

// `result`, `key` and `arguments` point at values of the attribute's own types.
enum class AttributeOp : int {
  // result <- the value; a collection: the element at `key` (the Ptr of an entity, else the value).
  get = 0,
  // The xIs of the attribute. `arguments`: the value, for a stored attribute or a
  // collection of values; else one pointer per parameter. result (if not null) <- what xIs gives.
  set = 1,
  // xDel, at `key` for a collection; result (if not null) <- what it gives.
  del = 2,
  // result (std::size_t) <- the number of elements.
  count = 3,
  // result (std::uint32_t) <- the collection's version.
  version = 4,
  // result (bool) <- whether `key` is present.
  has = 5,
  // Calls the method with `arguments`, one pointer per argument.
  call = 8,
  // Null attribute, value type: result (bool) <- operator!.
  isDefault = 9,
  // Null attribute, value type: result (bool) <- the object == *key.
  equal = 10,
  // Null attribute, key type: result (bool) <- the object < *key.
  less = 11,
};

inline constexpr int done = 0;
inline constexpr int notAllowed = 1;
inline constexpr int unknownId = 2;

// An element walk over a collection, in the collection's own order; for a
// sorted collection a change under the walk is survived by the version rule.
class Cursor {
 public:
  virtual ~Cursor() = default;
  // result <- the element: the Ptr<PtrInterface> of an entity, or the value.
  virtual void obj(void* result) const = 0;
  // result <- the key.
  virtual void key(void* result) const = 0;
  // The text of the element's key.
  virtual String keyStrRep() const = 0;
  // The element's text form.
  virtual String objStrRep() const = 0;
  // The counted element, null for a collection of values.
  virtual class PtrInterface* entity() const = 0;
  virtual bool nonnull() const = 0;
  virtual void inc() = 0;
};

struct Iterator {
  // Over an iterator made by genericIfIterator.
  struct IteratorVTable {
    // Needs a non-null iterator at an element; writes it as Cursor::obj.
    void (*iterObj)(ZetAttr const* attribute, void* iterator, void* result);
    // Needs an iterator at an element; writes its key.
    void (*iterKey)(ZetAttr const* attribute, void* iterator, void* result);
    // Whether the iterator stands at an element.
    bool (*iterNonnull)(ZetAttr const* attribute, void* iterator);
    // Moves to the next element; at the end stays there.
    void (*iterInc)(ZetAttr const* attribute, void* iterator);
    // Destroys and frees the iterator; a null one is ignored.
    void (*iterDel)(ZetAttr const* attribute, void* iterator);
  };
  // The operations over a Cursor; every collection's iterator is one.
  static IteratorVTable const cursorTable;
  // Hands a cursor over as an iterator of cursorTable.
  static void* release(std::unique_ptr<Cursor> cursor) { return cursor.release(); }
};

// The operations of a value type, in this order.
struct ValueMethods {
  // A copy of `source` at `destination`, or the default value when `source` is null.
  void (*genericIfConstruct)(void* destination, void const* source);
  // Destroys the value in place; its storage stays the caller's.
  void (*genericIfDestruct)(void* value);
  // Assigns the value read from the text; raises a ParseException or RangeException.
  void (*genericIfStrepToValue)(void* destination, String const& text, ZetType const* type);
  // The value's text form.
  String (*genericIfStrRep)(void const* value, ZetType const* type);
  // Never returns: the mirror's values are sorted, not hashed.
  std::size_t (*genericIfHash)(void const* value, ZetType const* type);
  // `pointer` seen as a `to`; equal types give it back, unrelated ones raise.
  void const* (*genericIfVoidPtrIs)(void const* pointer, ZetType const* from, ZetType const* to);
};

}  // namespace GenericIf

namespace GenericIfImpl {

// Raised by a value type that has no hash.
class UnhashableException : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};
// Raised for a pointer adjustment between unrelated types.
class TypeException : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

[[noreturn]] void throwUnhashableException(ZetType const* type);
[[noreturn]] void throwTypeException(ZetType const* from, ZetType const* to);
// The rule of genericIfVoidPtrIs for a type without bases.
void const* voidPtrIs(void const* pointer, ZetType const* from, ZetType const* to);

}  // namespace GenericIfImpl

}  // namespace Zet
