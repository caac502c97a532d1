#pragma once
#include <functional>

namespace fernwick {

/// Calls `run` once with each number from 0 up to `count`, several at a time, and returns when all are done.
/// @param threads  the most that work at a time; 0 for one a processor; in a finish of `RunInOrder` those that it has
void RunParallel(int count, int threads, const std::function<void(int)>& run);

/// Calls `work` once with each number from 0 up to `count`, several at a time, and `finish` with each in order, one at
/// a time, when its work is done. What either throws ends all and is thrown on.
/// @param most  numbers between the begin of their work and the end of their finish, above 0
void RunInOrder(int count, int threads, int most, const std::function<void(int)>& work,
    const std::function<void(int)>& finish);

/// How many threads work at a time when asked for `threads`.
int ThreadCount(int threads);

/// How many threads Embree builds its shapes with, in its own notation; null for as many as it likes.
const char* EmbreeSettings();

} // namespace fernwick
