#pragma once

#include "tests/support/pictures.h"

#include <string>

namespace testing_support {

// Holds the picture against `folder`/`name`.png. Gives the empty string when they agree, else what is wrong, after
// writing <name>.actual.png and <name>.difference.png into `failures`. With JOYVANE_UPDATE_GOLDEN=1 in the environment
// the picture in the folder is made anew instead.
std::string compareWithGolden(const CGImageRef& actual, const std::string& folder, const std::string& name,
                              const std::string& failures, PictureTolerance tolerance = {});

} // namespace testing_support
