// SPDX-License-Identifier: MIT
#include <helvantine/testsupport/ImageComparison.h>

namespace helvantine::test
{

TEST(PluginExample, ToolDrawsTheEffectOfAPluginThatLiesBesideIt)
{
    const Image picture = readPng(PLUGIN_PICTURE);
    ASSERT_FALSE(picture.isEmpty());
    // The picture goes through many steps of sine: drivers differ where folds are sharp.
    EXPECT_TRUE(matchesGolden(picture, "silk", Tolerance{4.0f, 0.01f}));
}

} // namespace helvantine::test
