#pragma once
#include "frame/MCCountedPtr.h"

/// Queries `object` for the face `id` into `out` and releases what `out` held. `out` is null after a failure, and after
/// a success that gave nothing.
/// @return the status of the query
template <class Face, class Object> MCErr Query(Object& object, const GUID& id, MCCountedPtr<Face>& out)
{
    void* face = nullptr;
    const MCErr status = object.QueryInterface(id, &face);
    *out.Address() = status == MC_S_OK ? static_cast<Face*>(face) : nullptr;
    return status;
}
