#pragma once
#include "frame/TBasicUnknown.h"

/// One way to a class: an identifier and the constructor that it stands for.
struct ClassRoute {
    GUID fClassID;
    TBasicUnknown* (*fMake)(); ///< a new object with count 1, null when memory is refused
};

/// What makes an object of a class, for its row.
template <class Class> TBasicUnknown* Make() { return new Class; }

/// The routes of the pack, in order, closed by a row whose `fMake` is null.
extern const ClassRoute kClassRoutes[];
