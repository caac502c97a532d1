#pragma once
#include <functional>

namespace fernwick {

/// Calls `run` once with each number from 0 up to `count`, several at a time, and returns when all are done.
/// @param threads  the most that work at a time; 0 for one a processor
void RunParallel(int count, int threads, const std::function<void(int)>& run);

/// How many threads Embree builds its shapes with, in its own notation; null for as many as it likes.
const char* EmbreeSettings();

} // namespace fernwick
