// SPDX-License-Identifier: MIT
// The bit numbers that ought not to come.
#include "fsobjects/modBitManipulation.h"

#include "base/RuntimeError.h"
#include "frame/Views.h"

namespace quillmarsh {

std::int32_t UnusualBitMask(std::int32_t bit) {
  if (bit < 0) return 0;  // a fraction, which rounds to nothing
  if (bit >= 32) {
    ShowMessageBox({u"Oops.  Too many values being stored in this one LONG bitfield variable", {}});
    return BitMask(bit % 31);
  }
  throw RuntimeError(runtime_error::Overflow);
}

}  // namespace quillmarsh
