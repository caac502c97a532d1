#pragma once
#include "frame/Guid.h"
#include <string_view>

// Identifiers under which the module `Fernwick_unrouted` makes the classes that the pack has no route to. They are
// the reference host's own and no part of the pack's contract: documents of other hosts never hold them.

struct UnroutedClass {
    std::string_view fName;
    GUID fID;
};

inline constexpr UnroutedClass kUnroutedClasses[] = {
    {"Curvature", {0xEE39E68E, 0x9021, 0x46F6, {0xA5, 0x1E, 0xD6, 0x2D, 0x93, 0xBC, 0xCA, 0x5C}}},
    {"Corners", {0x6B41C8EE, 0xFFD2, 0x44EC, {0x9E, 0x7E, 0x7A, 0xB4, 0xAE, 0xB3, 0xA0, 0xD2}}},
    {"Shadow_pass", {0x82E036C4, 0xB765, 0x4CB0, {0x8C, 0x76, 0xF9, 0xFA, 0xE9, 0x79, 0x3F, 0x69}}},
};

/// The identifier of a class by its name; null when the class has a route.
constexpr const GUID* UnroutedClassID(std::string_view name)
{
    for (const UnroutedClass& row : kUnroutedClasses)
        if (row.fName == name)
            return &row.fID;
    return nullptr;
}
