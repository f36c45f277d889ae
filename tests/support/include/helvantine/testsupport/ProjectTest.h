// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/host/Application.h>
#include <helvantine/host/Document.h>
#include <helvantine/testsupport/RenderingTest.h>
#include <helvantine/testsupport/TemporaryFolder.h>
#include <helvantine/timeline/FxContext.h>

namespace helvantine
{
class Composition;
}

namespace helvantine::test
{

/// An application with an empty document and a composition "Main" in it, without a device. The plugin folder
/// is that of the test's executable.
class ProjectTest : public testing::Test
{
protected:
    ProjectTest() : ProjectTest(false) {}
    explicit ProjectTest(bool createDevice);
    ~ProjectTest() override;

    Application& application() { return *m_application; }
    Document& document() { return *m_application->getDocument(); }
    Composition& composition() { return *m_composition; }
    const TemporaryFolder& folder() const { return m_folder; } ///< the document's cache folder
    /// The same application with an empty document again.
    void newDocument();

    /// Ticks the composition: time is frame / frame rate of the project.
    void tick(int frame);

private:
    TemporaryFolder m_folder;
    std::unique_ptr<Application> m_application;
    SmartRef<Composition> m_composition;
};

/// The same with the application's own device, off-screen and off-line, watched by the validation layer.
class DrawingTest : public ProjectTest
{
protected:
    explicit DrawingTest(unsigned width = 320, unsigned height = 180);

    void SetUp() override;
    void TearDown() override;

    /// Ticks and draws a frame into a fresh target of the test's size.
    Image render(int frame);

private:
    unsigned m_width;
    unsigned m_height;
};

} // namespace helvantine::test
