#include "web/native/FloatRemainder.h"

/// In the place of the C library's, which `Weave` and `Spoke` would spend most of their time in.
extern "C" float fmodf(float number, float divisor) { return fernwick::FloatRemainder(number, divisor); }
