#pragma once
#include <cstdint>
#include <cstring>
#include <vector>

/// A number for some bytes, by the method of Fowler, Noll and Vo.
inline uint32_t Mark(const void* start, size_t size)
{
    const auto* const bytes = static_cast<const unsigned char*>(start);
    uint32_t mark = 2166136261;
    for (size_t i = 0; i < size; ++i)
        mark = (mark ^ bytes[i]) * 16777619;
    return mark;
}

/// Of the bytes of a table.
template <class Table> uint32_t Mark(const Table& table) { return Mark(&table, sizeof table); }

inline uint32_t Mark(const std::vector<float>& numbers)
{
    return Mark(numbers.data(), numbers.size() * sizeof(float));
}
