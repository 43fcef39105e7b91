// SPDX-License-Identifier: MIT
// The module's two functions under their names.
#include "support/ChecksumModule.h"

#include "frame/ProgramFlags.h"
#include "pbcrc32/pbcrc32.h"

namespace quillmarsh {

void PutChecksumModule(SimulatedMachine& machine) {
  gAppPath = u"C:\\Program\\";
  machine.SetModule(gAppPath + u"pbcrc32.dll",
                    {{"PB_GetFileCrc32", reinterpret_cast<void*>(&PB_GetFileCrc32)},
                     {"PB_SetCallbacks", reinterpret_cast<void*>(&PB_SetCallbacks)}});
}

}  // namespace quillmarsh
