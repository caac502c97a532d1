#pragma once
#include "frame/Colors.h"
#include <span>

namespace fernwick {

/// Lays pixels over those of a ground, as many, all with a straight alpha: an alpha of 1 (or more) hides the ground, 0
/// (or less, or NaN) shows it.
void LayOver(std::span<TMCColorRGBA> pixels, std::span<const TMCColorRGBA> ground);

} // namespace fernwick
