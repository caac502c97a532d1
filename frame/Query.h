#pragma once
#include "frame/MCCountedPtr.h"

/// Releases what `out` holds, then queries `object` for the face `id` into it. `out` is null after a failure, and after
/// a success that gave nothing.
/// @return the status of the query
template <class Face, class Object> MCErr Query(Object& object, const GUID& id, MCCountedPtr<Face>& out)
{
    Face** const slot = out.Address();
    void* face = nullptr;
    const MCErr status = object.QueryInterface(id, &face);
    *slot = status == MC_S_OK ? static_cast<Face*>(face) : nullptr;
    return status;
}
