#pragma once
#include "host/json/JsonNode.h"
#include "host/parameters/ParameterTable.h"

namespace fernwick {

/// How a value gets from one key to the next.
enum class Between {
    kLinear, ///< evenly
    kSmooth, ///< by 3 t^2 - 2 t^3 of the share t of the way: it starts and stops gently
    kStep,   ///< at the next key, all at once
};

/// The values of a document that change from frame to frame. Any field of a shader, or part of one, and what a scene
/// says of places, lights, cameras, sizes and looks may be keyed:
///
///     {"keys": [[1, 0.1], [24, 0.45]], "between": "smooth"}
///
/// A key is a frame and the value there; before the first and behind the last key the value holds. Numbers, and
/// vectors and colours number by number, go `linear` from key to key unless told otherwise. What isn't made of
/// numbers, and integers, codes and switches, change by `step`.
class Keys {
public:
    /// Finds the keyed values of a document, which has to outlive this at the same place. Throws `GraphError` for keys
    /// that can't be used.
    explicit Keys(Json& document);

    bool IsEmpty() const { return fCurves.empty(); }
    double FirstFrame() const; ///< of all keys, of which there are some
    double LastFrame() const;
    /// Puts the values of a frame into the document.
    void Store(double frame) const;

private:
    struct Key {
        double frame;
        Json value;
    };
    struct Curve {
        Json* place; // in the document
        std::vector<Key> keys;
        Between between;

        Json At(double frame) const;
    };
    class Finder;

    std::vector<Curve> fCurves;
};

/// The table of a shader as a document describes it; null when that isn't right.
const ParameterTable* TableOf(const Json& shader);

/// Whether fields of a type change by `Between::kStep` alone.
bool ChangesInSteps(FieldType type);

/// The field at an address, around it or, of an array of fields, the first one in it; null when there is none.
const Field* FieldNear(const ParameterTable& table, const std::string& address);

} // namespace fernwick
