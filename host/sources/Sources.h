#pragma once
#include "frame/IShellShader.h"
#include "frame/MCCountedPtr.h"
#include "host/parameters/FieldValue.h"
#include <stdexcept>

namespace fernwick {

struct GivenPicture;

/// A source that can't be made of its settings. The text starts with the name of the setting.
class SourceError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// One kind of the host's own pluggable shaders: `color`, `value`, `picture`, `checker`, `ramp`, `gradient`
/// and `surface`.
///
/// A source answers from `fUV` alone. It never changes once it is made, so one object serves any number of
/// threads. A colour source that is asked for a value gives the colour's luminance, a value source that is asked
/// for a colour gives an opaque grey, and both answer a surface with that colour as the main colour.
struct SourceKind {
    ParameterTable fTable;
    const void* fDefaults; ///< a record as it is before any setting
};

std::span<const SourceKind> AllSources();

/// The kind of exactly this name; null when there is none.
const SourceKind* FindSource(std::string_view name);

/// The names of all kinds.
std::vector<std::string> SourceNames();

/// Makes a source of a kind out of `AllSources`. Throws `SourceError`.
MCCountedPtr<IShellShader> MakeSource(const SourceKind& kind, std::span<const FieldSetting> settings);

/// Makes a picture source that takes a picture in the place of the file that the settings name.
MCCountedPtr<IShellShader> MakePictureSource(
    const GivenPicture& picture, std::span<const FieldSetting> settings);

} // namespace fernwick
