// SPDX-License-Identifier: MIT
// A failure is reported under the name of the routine and gives an empty text.
#include "search/results/modDupe.h"

#include "frame/ErrorReporting.h"

namespace quillmarsh {

Text EncloseInQuotes(TextView text) {
  Text quoted;
  Guarded(u"modDupe.EncloseInQuotes", [&] { quoted = u"\"" + Text(text) + u"\""; });
  return quoted;
}

}  // namespace quillmarsh
