#pragma once
#include "host/sources/GivenPicture.h"
#include <memory>
#include <pybind11/numpy.h>

/// A picture that a program gives, and the array that it gave.
struct PyPicture {
    explicit PyPicture(const pybind11::array& pixels);

    pybind11::array fArray; // read-only
    std::shared_ptr<const fernwick::GivenPicture> fPicture;
};
