#pragma once
#include "host/library/Library.h"

/// The library that this process has loaded. Throws `LibraryError` before there is one.
fernwick::Library& LoadedLibrary();

/// The same; null before there is one.
fernwick::Library* LibraryOrNull();
