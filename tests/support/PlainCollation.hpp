#pragma once

#include "platform/Collation.hpp"

namespace vigil {

/// An order that is the same on every machine: byte by byte, ASCII letters without regard to case. Counts how
/// often it was asked. One thread.
class PlainCollation : public Collation {
  public:
    int compareIgnoringCase(std::string_view first, std::string_view second) const override;

    mutable int asked = 0;
};

}  // namespace vigil
