#pragma once
#include "host/documents/GraphDocument.h"
#include "host/library/Library.h"
#include <functional>

/// Prints all that a document's output answers for the sample at U and V. Every operation is asked by a graph of
/// its own, so that none finds what another one left behind.
void PrintSample(const fernwick::Library& library, const fernwick::GraphDocument& document, float u, float v);

/// Shades the samples of a picture with each operation that the output offers, by one thread, row by row from the
/// top, and prints the time of a sample and, for every number, its range, NaNs and infinities.
/// @param onRow  called after each row, outside the measured time
void PrintStatistics(const fernwick::Library& library, const fernwick::GraphDocument& document, int width,
    int height, const std::function<void()>& onRow);
