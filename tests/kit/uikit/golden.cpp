#include "tests/support/golden.h"

#include "kit/uikit/snapshot.h"
#include "tests/kit/uikit/SceneTest.h"

#include <cstdlib>
#include <filesystem>

namespace {

using GoldenPictures = SceneTest;

} // namespace
