#pragma once
#include <stdexcept>

namespace fernwick {

/// A document that describes no graph, or one that can't be made live. The text names the place and what was
/// expected there, such as `cloth.fRepeatU: expected an integer, got "x"`.
class GraphError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

} // namespace fernwick
