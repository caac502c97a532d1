#pragma once
#include "frame/Colors.h"
#include <memory>
#include <pybind11/numpy.h>
#include <vector>

using Floats = pybind11::array_t<float, pybind11::array::c_style>;

/// A view of numbers that live as long as `owner`, which Python can't write.
template <class Number>
pybind11::array ReadOnly(
    const std::vector<pybind11::ssize_t>& shape, const Number* numbers, const pybind11::handle& owner)
{
    pybind11::array_t<Number> view(shape, numbers, owner);
    pybind11::detail::array_proxy(view.ptr())->flags &= ~pybind11::detail::npy_api::NPY_ARRAY_WRITEABLE_;
    return view;
}

/// A view of what is moved to the heap, where it lives as long as the view.
template <class Owner, class Number>
pybind11::array Own(
    const std::vector<pybind11::ssize_t>& shape, std::unique_ptr<Owner> owner, const Number* numbers)
{
    const pybind11::capsule holder(owner.release(), [](void* held) { delete static_cast<Owner*>(held); });
    return pybind11::array_t<Number>(shape, numbers, holder);
}
