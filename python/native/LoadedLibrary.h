#pragma once
#include "host/library/Library.h"

/// The library that this process has loaded. Throws `LibraryError` before there is one.
fernwick::Library& LoadedLibrary();
