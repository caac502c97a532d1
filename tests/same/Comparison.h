#pragma once
#include "host/validation/CallLog.h"
#include "host/validation/FuzzCase.h"
#include "host/validation/Sheet.h"
#include <optional>
#include <span>
#include <string>

namespace fernwick::same {

/// The first 32-bit word in which two records differ, as text; empty for none.
std::string DifferenceOfWords(const char* what, const void* left, const void* right, size_t size);

/// What differs in one operation on one sample: its results, the flag, or what became of the sample; empty for
/// nothing.
std::string DifferenceOf(
    validation::Sheet::Operation operation, const validation::Sheet& left, const validation::Sheet& right);

/// The first call that differs; empty for none.
std::string DifferenceOf(
    std::span<const validation::ProbeCall> left, std::span<const validation::ProbeCall> right);

/// The bytes of a class's records that mean something: neither padding nor a string's table of operations.
class RecordSpans {
public:
    explicit RecordSpans(const ParameterTable& table);

    /// The first field that differs; empty for none.
    std::string DifferenceOf(const char* left, const char* right) const;
    /// Copies a field from one record to another of the same library.
    static void Copy(const Field& field, const char* from, char* to);

private:
    struct Span {
        const Field* field; ///< the first one
        size_t start;
        size_t size;
    };
    const ParameterTable& fTable;
    std::vector<Span> fSpans;
};

} // namespace fernwick::same
