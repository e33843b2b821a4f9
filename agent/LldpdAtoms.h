#pragma once
// liblldpctl's atoms: a counted reference that gives itself back, and the
// readers that copy an atom into the plain values of LldpdMapping.h.

#include <lldpctl.h>

#include <utility>

#include "LldpdMapping.h"

class LldpctlAtom {
 public:
  LldpctlAtom() = default;
  // Takes over a reference the caller owns (what liblldpctl's getters return).
  explicit LldpctlAtom(lldpctl_atom_t* owned) : atom_(owned) {}
  // Takes a reference of its own to an atom that is only lent.
  static LldpctlAtom borrowed(lldpctl_atom_t* atom) {
    if (atom) {
      lldpctl_atom_inc_ref(atom);
    }
    return LldpctlAtom(atom);
  }
  ~LldpctlAtom() { lldpctl_atom_dec_ref(atom_); }
  LldpctlAtom(LldpctlAtom&& other) noexcept : atom_(std::exchange(other.atom_, nullptr)) {}
  LldpctlAtom& operator=(LldpctlAtom&& other) noexcept {
    std::swap(atom_, other.atom_);
    return *this;
  }
  LldpctlAtom(LldpctlAtom const&) = delete;
  LldpctlAtom& operator=(LldpctlAtom const&) = delete;

  lldpctl_atom_t* get() const { return atom_; }
  explicit operator bool() const { return atom_ != nullptr; }

 private:
  lldpctl_atom_t* atom_ = nullptr;
};

LldpdConfig readLldpdConfig(lldpctl_atom_t* config);
LldpdChassis readLldpdChassis(lldpctl_atom_t* chassis);
// A neighbour: a remote port atom, as listed by a port or carried by a change notification.
LldpdNeighbor readLldpdNeighbor(lldpctl_atom_t* port);
// A local port as lldpctl_get_port() gives it, with the neighbours lldpcli shows (not the hidden ones).
LldpdInterface readLldpdInterface(lldpctl_atom_t* port);
