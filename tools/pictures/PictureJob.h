#pragma once
#include "host/shading/Render.h"
#include "tools/PictureOptions.h"

/// Throws, before the work, `UsageError` when the options don't fit the kind of file, and `FileError` when it couldn't
/// be written. No file at all fits.
void RequireTarget(const PictureOptions& options);

/// The job of a render with these options. It is cancelled by Ctrl-C. Throws `RenderError` when the memory that is free
/// doesn't hold the picture.
fernwick::RenderJob RenderJobOf(const PictureOptions& options, int samples);
