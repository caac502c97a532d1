#include "frame/TMCObject.h"
#include "frame/HostServices.h"

void* TMCObject::operator new(size_t size) noexcept { return AllocateObject(size); }

void TMCObject::operator delete(void* memory) noexcept { FreeObject(memory); }
