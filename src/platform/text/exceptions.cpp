#include "platform/text/exceptions.h"

namespace vyn {

void Abort() { throw EAbort("Operation aborted"); }

}  // namespace vyn
