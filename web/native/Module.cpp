#include "host/library/Module.h"

// Nothing can be loaded into a page: the module is linked.

namespace fernwick {

void* OpenModule(const std::filesystem::path&) { return nullptr; }

void CloseModule(void*) { }

void* FindFunction(void*, const char*) { return nullptr; }

bool IsModuleLoaded(const std::filesystem::path&) { return false; }

std::string LastModuleFailure() { return "a page loads no libraries"; }

} // namespace fernwick
