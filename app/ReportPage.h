// The page of a report: the bundle of `app/report/`, which CMake builds into the program, with the
// data in its place.
#pragma once

#include "ResultOutput.h"

namespace Tessel::Norn::Brindle::Program {

class DifferencePack;
class ImagePack;

/// Writes the page of one image.
void WriteReport(const ImagePack& image, ResultOutput& output);

/// Writes the page of two images and their differences.
void WriteReport(const ImagePack& oldImage, const ImagePack& newImage,
                 const DifferencePack& differences, ResultOutput& output);

} // namespace Tessel::Norn::Brindle::Program
