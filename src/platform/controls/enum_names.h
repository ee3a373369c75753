#pragma once

#include "platform/objects/type_info.h"

// Defines TypeInfoOf for an enumeration whose values' names are given in order.
#define VYN_ENUM_NAMES(Type, ...)                         \
    const EnumType& TypeInfoOf(TypeTag<Type>) {           \
        static const EnumType type(#Type, {__VA_ARGS__}); \
        return type;                                      \
    }
