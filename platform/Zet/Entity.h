#pragma once
// Base of all named state: a name and an uncounted link to the parent.

#include "Zet/Notifiee.h"
#include "Zet/Ptr.h"
#include "Zet/String.h"

namespace Zet {

class Entity : public PtrInterface {
 public:
  class NotifieeConst : public PtrInterface::NotifieeConst {};

  ~Entity() override { liveObjectsLeave(this); }

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

 protected:
  // Text may refer to an entity by its address (Zet::sequenceToValueOfPtr).
  explicit Entity(Name name = {}) : name_(std::move(name)) { liveObjectsEnter(this); }

 private:
  Name name_;
  Entity* parent_ = nullptr;
};

}  // namespace Zet
