#include "foundation/Path.h"

namespace System {

// The one set of path rules the program uses is compiled here once, not in every includer.
template class BasicPath<Win32::PathTraits>;
template class Private::PathStringParser<Win32::PathTraits>;

}  // namespace System
