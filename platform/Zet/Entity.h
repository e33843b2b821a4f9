#pragma once
// Base of all named state: a name and an uncounted link to the parent.

#include "Zet/Notifiee.h"
#include "Zet/Ptr.h"
#include "Zet/String.h"

namespace Zet {

class Entity : public PtrInterface {
 public:
  class NotifieeConst : public PtrInterface::NotifieeConst {};

  virtual Name name() const { return name_; }
  // The parent does not keep its children alive, nor they it: a member's
  // collection clears the link when it lets the member go.
  Entity* parent() const { return parent_; }
  void parentIs(Ptr<Entity> const& parent) { parent_ = parent.get(); }
  // The names from the top-most ancestor down, joined by "/".
  String fullName() const;

  virtual void nameIsFromBackup(Name const&) {}
  virtual bool hasBackupSupport() const { return false; }

 protected:
  explicit Entity(Name name = {}) : name_(std::move(name)) {}

 private:
  Name name_;
  Entity* parent_ = nullptr;
};

}  // namespace Zet
