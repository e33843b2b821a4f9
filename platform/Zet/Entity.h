#pragma once
// Base of all named state: a name and an uncounted link to the parent.

#include "Zet/Notifiee.h"
#include "Zet/Ptr.h"
#include "Zet/String.h"

namespace Zet {

struct ZetType;

class Entity : public PtrInterface {
 public:
  class NotifieeConst : public PtrInterface::NotifieeConst {};

  ~Entity() override { liveObjectsLeave(this); }

  // Describes name, parent, parentAttrName, fullName and entity, which every entity inherits.
  static ZetType const _zetType;
  ZetType const* fwkType() const override { return &_zetType; }

  virtual Name name() const { return name_; }
  // The parent does not keep its children alive, nor they it: a member's
  // collection clears the link when it lets the member go.
  Entity* parent() const { return parent_; }
  // Plain pointer: taking a counted one here would release a parent whose count is still 0.
  void parentIs(Entity* parent) { parent_ = parent; }
  // The names from the top-most ancestor down, joined by "/".
  String fullName() const;

  virtual void nameIsFromBackup(Name const&) {}
  virtual bool hasBackupSupport() const { return false; }

  // Process-wide singletons, one per name (by convention the demangled name of
  // their type); they live until the process ends.
  // The singleton called `name`, or null when none has been made.
  static Ptr<Entity> singletonExists(Name const& name);
  // Makes the singleton `name` from `type`'s description, unless it exists;
  // gives the one that stands either way.
  static Ptr<Entity> singletonIs(ZetType const* type, Name const& name);

 protected:
  // Text may refer to an entity by its address (Zet::sequenceToValueOfPtr).
  explicit Entity(Name name = {}) : name_(std::move(name)) { liveObjectsEnter(this); }

 private:
  Name name_;
  Entity* parent_ = nullptr;
};

}  // namespace Zet
