// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/core/SmartRef.h>
#include <helvantine/renderer/RenderTarget.h>
#include <helvantine/renderer/RenderWindow.h>
#include <helvantine/renderer/Renderer.h>
#include <helvantine/testsupport/ImageComparison.h>

#include <functional>

namespace helvantine::test
{

/// Fails for every message of the validation layer that is in the report, and for what stands on the
/// renderer's stacks outside a frame. The other problems stay for the test to look at.
void expectCleanRenderer(const Renderer& renderer);

/// The pixels of a target, or of the back buffer if it is null. Empty, with a failure noted, if they can't be
/// read.
Image readImage(Renderer& renderer, RenderTarget* target);

/// A renderer without a window, watched by the validation layer. Every test ends with empty stacks and without
/// a message from the layer.
class RenderingTest : public testing::Test
{
protected:
    explicit RenderingTest(unsigned width = 320, unsigned height = 180);
    ~RenderingTest() override;

    void SetUp() override;
    void TearDown() override;

    /// One frame into the back buffer, which is cleared to transparent black before.
    Image draw(const std::function<void()>& body);

    Renderer& renderer() { return *m_renderer; }

private:
    unsigned m_width;
    unsigned m_height;
    RenderWindow m_window;
    std::unique_ptr<Renderer> m_renderer;
};

} // namespace helvantine::test
