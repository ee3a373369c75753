#include "platform/streams/value_type.h"

namespace vyn {

const char* ValueTypeText(TValueType type) {
    switch (type) {
        case vaNull:
            return "the end of a list";
        case vaList:
            return "a list";
        case vaInt8:
        case vaInt16:
        case vaInt32:
            return "an integer";
        case vaExtended:
            return "a real number";
        case vaString:
        case vaLString:
            return "a string";
        case vaIdent:
            return "an identifier";
        case vaFalse:
        case vaTrue:
            return "a boolean";
        case vaBinary:
            return "binary data";
        case vaSet:
            return "a set";
        case vaNil:
            return "nil";
        case vaCollection:
            return "a collection";
        case vaSingle:
            return "a single";
        case vaCurrency:
            return "a currency";
        case vaDate:
            return "a date";
        case vaWString:
            return "a wide string";
        case vaInt64:
            return "a 64-bit integer";
    }
    return "an unknown value type";
}

}  // namespace vyn
