#include "frame/ClassRoutes.h"
#include "shaders/mapping/Key.h"

namespace {

template <class Class> TBasicUnknown* Make() { return new Class; }

} // namespace

const ClassRoute kClassRoutes[] = {
    {{0x379752D6, 0xC5EB, 0x4173, {0xB3, 0xE4, 0xFF, 0x72, 0x77, 0x69, 0x48, 0x3A}}, &Make<Key>},
    {{}, nullptr},
};
