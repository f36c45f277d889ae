// SPDX-License-Identifier: MIT
// A frame drawn alone is the one of the range, also where targets carry their pictures from frame to frame.
#include "DocumentCheck.h"
#include "OfflineHost.h"

#include <helvantine/core/Keyframe.h>
#include <helvantine/core/System.h>
#include <helvantine/core/Text.h>
#include <helvantine/effects2d/ClearScreenEffect.h>
#include <helvantine/effects2d/RenderTargetEffect.h>
#include <helvantine/effects2d/TextureBlurEffect.h>
#include <helvantine/effects2d/TextureGlowEffect.h>
#include <helvantine/host/Application.h>
#include <helvantine/host/CompositionManager.h>
#include <helvantine/host/Document.h>
#include <helvantine/renderer/BlendState.h>
#include <helvantine/resource/RenderTargetResourceImporter.h>
#include <helvantine/resource/ResourceManager.h>
#include <helvantine/resource/TextureResourceImporter.h>
#include <helvantine/testsupport/Image.h>
#include <helvantine/testsupport/TemporaryFolder.h>
#include <helvantine/timeline/Composition.h>
#include <helvantine/timeline/Layer.h>

#include <gtest/gtest.h>

#include <map>
#include <random>

namespace helvantine::test
{

namespace
{

constexpr tool::FrameSize size{32, 18};

/// A document of small targets and of quads that draw a picture, or one target into another.
class Project
{
public:
    explicit Project(const TemporaryFolder& folder)
        : m_folder(folder), m_application(getExecutableFolder().c_str(), false)
    {
        Image picture(8, 8);
        for (unsigned i = 0; i < 64; ++i)
            picture.at(i % 8, i / 8) = Vec4(float(i % 8) / 8, float(i / 8) / 8, 0.5f, float(i % 5) / 4);
        writePng(folder.file("picture.png"), picture);
        m_application.newDocument(folder.file("").c_str());
        m_composition = new Composition(true, true);
        m_application.getDocument()->getCompositionManager()->getRoot()->addComposition(m_composition.get());
        const SmartRef<TextureResourceImporter> importer(new TextureResourceImporter);
        importer->import(folder.file("picture.png").c_str(), nullptr);
        m_picture = addResource(*importer, "Picture");
    }

    std::string addTarget(const char* name)
    {
        const SmartRef<RenderTargetResourceImporter> importer(new RenderTargetResourceImporter);
        for (const char* side : {"Width", "Height"})
            set(*importer, side, "32");
        return addResource(*importer, name);
    }

    template <class T>
    T& add(Object* parent, int start = 0, int end = 100)
    {
        const SmartRef<T> effect(new T);
        effect->onInit();
        effect->setStart(start);
        effect->setEnd(end);
        (parent ? parent : m_composition->m_rootEffect.get())->addObject(effect.get(), -1);
        return *effect;
    }

    RenderTargetEffect& into(const std::string& target, int start = 0, int end = 100)
    {
        auto& effect = add<RenderTargetEffect>(nullptr, start, end);
        set(effect, "Render Target", target);
        return effect;
    }

    /// Over the whole target, or over a part that moves with the frame.
    template <class T = TextureEffect>
    T& quad(Object* parent, const std::string& resource, BlendMode blend, bool whole, int start = 0,
            int end = 100)
    {
        T& effect = add<T>(parent, start, end);
        set(effect, "Texture", resource);
        set(effect, "Blend", std::to_string(static_cast<int>(blend)));
        set(effect, "Size", whole ? "960, 540" : "300, 300");
        if (!whole)
            move(effect);
        return effect;
    }

    void set(Object& object, const char* name, const std::string& value)
    {
        property(object, name).fromString(value.c_str());
    }

    std::string save(const char* name)
    {
        const std::string path = m_folder.file(name);
        m_application.saveDocument(path.c_str());
        return path;
    }

    std::string m_picture;

private:
    std::string addResource(ResourceImporter& importer, const char* name)
    {
        const SmartRef<Resource> resource(importer.createResource());
        resource->setName(name);
        resource->setImporter(&importer);
        m_application.getDocument()->getResourceManager()->getRoot()->addResource(resource.get());
        return uniqueIdToString(resource->getId());
    }

    static PropertyBase& property(Object& object, const char* name)
    {
        if (PropertyBase* found = tool::findInput(object, name))
            return *found;
        ADD_FAILURE() << name;
        std::abort();
    }

    void move(Object& effect)
    {
        auto* keys = new Keyframe(3);
        for (const float time : {0.0f, 1.0f}) {
            auto* key = new Key;
            key->time = time;
            key->values[0] = 600 * time;
            key->values[1] = 300 * time;
            keys->addKey(key, true);
        }
        property(effect, "Position").setKeyframe(keys);
    }

    const TemporaryFolder& m_folder;
    Application m_application;
    SmartRef<Composition> m_composition;
};

using Pixels = std::vector<uint8_t>;

/// The frames of that document, drawn by one host in this order; carrier becomes what the host found.
std::map<int, Pixels> drawFrames(const std::string& document, const std::vector<int>& frames,
                                 std::string* carrier = nullptr, std::optional<int> preroll = {})
{
    std::map<int, Pixels> pictures;
    tool::OfflineHost host(false, preroll);
    EXPECT_EQ(host.load(document), "");
    EXPECT_EQ(host.choose(""), "");
    EXPECT_EQ(host.setSize(size), "");
    for (const int frame : frames)
        EXPECT_EQ(host.draw(frame, pictures[frame]), "");
    if (carrier)
        *carrier = host.getCarrier();
    return pictures;
}

std::map<int, Pixels> drawRange(const std::string& document, int last)
{
    std::vector<int> frames;
    for (int frame = 0; frame <= last; ++frame)
        frames.push_back(frame);
    return drawFrames(document, frames);
}

/// A few targets, drawn and read in any order; half of the time cleared, or covered, as careful authors do.
void fillAtRandom(Project& project, std::mt19937& random)
{
    const auto pick = [&](int count) { return static_cast<int>(random() % static_cast<unsigned>(count)); };
    const auto window = [&] { return pick(3) ? std::pair{0, 100} : std::pair{pick(12), 4 + pick(20)}; };
    const std::string targets[] = {project.addTarget("A"), project.addTarget("B"), project.addTarget("C")};
    const auto source = [&] { return pick(2) ? project.m_picture : targets[pick(3)]; };
    const auto drawInto = [&](Object* parent) {
        const auto [start, end] = window();
        auto& quad = project.quad(parent, source(), static_cast<BlendMode>(pick(5)), pick(2), start, end);
        if (pick(6) == 0)
            project.set(quad, "3D", "1");
    };
    for (int i = 0; i < 4; ++i) {
        const auto [start, end] = window();
        Object& inner = project.into(targets[pick(3)], start, end);
        if (pick(2)) {
            auto& clear = project.add<ClearScreenEffect>(&inner);
            project.set(clear, "Clear Color Target", pick(4) ? "1" : "0");
        } else if (pick(2)) {
            project.quad(&inner, project.m_picture, BlendMode::Solid, true);
        }
        for (int quads = pick(3); quads >= 0; --quads)
            drawInto(&inner);
        if (pick(4) == 0) {
            auto& blur = project.quad<TextureBlurEffect>(nullptr, source(), BlendMode::Alpha, true);
            project.set(blur, "Vertical Blur Target", targets[pick(3)]);
            project.set(blur, "Horizontal Blur Target", targets[pick(3)]);
        }
    }
    project.quad(nullptr, targets[pick(3)], BlendMode::Solid, true);
    drawInto(nullptr);
}

} // namespace

TEST(FrameHistory, FindsTargetsThatCarryTheirPicturesAndDrawsAllBefore)
{
    constexpr int last = 12;
    const struct
    {
        const char* name;
        std::function<void(Project&)> fill;
        const char* carrier;
    } cases[] = {
        {"no carrying",
         [](Project& project) {
             const std::string a = project.addTarget("A");
             Object& inner = project.into(a);
             project.add<ClearScreenEffect>(&inner);
             project.quad(&inner, project.m_picture, BlendMode::Alpha, false);
             project.quad(nullptr, a, BlendMode::Solid, true);
         },
         ""},
        {"covered instead of cleared",
         [](Project& project) {
             const std::string a = project.addTarget("A");
             Object& inner = project.into(a);
             project.quad(&inner, project.m_picture, BlendMode::Solid, true);
             project.quad(&inner, project.m_picture, BlendMode::Additive, false);
             project.quad(nullptr, a, BlendMode::Solid, true);
         },
         ""},
        {"trails that begin late",
         [](Project& project) {
             const std::string a = project.addTarget("A");
             project.quad(&project.into(a, 3), project.m_picture, BlendMode::Alpha, false);
             project.quad(nullptr, a, BlendMode::Solid, true);
         },
         "\"A\""},
        {"ping-pong",
         [](Project& project) {
             const std::string a = project.addTarget("A"), b = project.addTarget("B");
             Object& first = project.into(a);
             project.add<ClearScreenEffect>(&first);
             project.set(project.quad(&first, b, BlendMode::Solid, true), "UV-Rect", "0.05, 0, 0.9, 1");
             project.quad(&first, project.m_picture, BlendMode::Alpha, false);
             project.quad(&project.into(b), a, BlendMode::Solid, true);
             project.quad(nullptr, b, BlendMode::Solid, true);
         },
         "\"B\""},
        {"feedback, two frames late",
         [](Project& project) {
             const std::string a = project.addTarget("A"), b = project.addTarget("B");
             project.quad(nullptr, b, BlendMode::Solid, true);
             project.quad(&project.into(b), a, BlendMode::Solid, true);
             Object& inner = project.into(a);
             project.add<ClearScreenEffect>(&inner);
             project.quad(&inner, project.m_picture, BlendMode::Alpha, false);
         },
         "\"A\""},
        {"depth that nobody clears",
         [](Project& project) {
             const std::string a = project.addTarget("A");
             Object& inner = project.into(a);
             project.set(project.add<ClearScreenEffect>(&inner), "Clear Depth Target", "0");
             auto& quad = project.quad(&inner, project.m_picture, BlendMode::Solid, false);
             project.set(quad, "3D", "1");
             project.quad(nullptr, a, BlendMode::Solid, true);
         },
         "\"A\""},
    };
    for (const auto& [name, fill, expected] : cases) {
        const TemporaryFolder folder;
        std::string document;
        {
            Project project(folder);
            fill(project);
            document = project.save("made.hfx");
        }
        const auto range = drawRange(document, last);
        std::string carrier;
        const auto alone = drawFrames(document, {2, 7, 8, last}, &carrier);
        EXPECT_EQ(carrier, expected) << name;
        for (const auto& [frame, pixels] : alone)
            EXPECT_TRUE(pixels == range.at(frame)) << name << ", frame " << frame;
        if (*expected) {
            EXPECT_FALSE(drawFrames(document, {last}, nullptr, 0).at(last) == range.at(last)) << name;
        }
    }
}

TEST(FrameHistory, DrawsFramesOfRandomDocumentsTheSameAloneAndInARange)
{
    constexpr int last = 20;
    int carrying = 0, differing = 0;
    for (unsigned seed = 0; seed < 50; ++seed) {
        std::mt19937 random(seed);
        const TemporaryFolder folder;
        std::string document;
        {
            Project project(folder);
            fillAtRandom(project, random);
            document = project.save("made.hfx");
        }
        const auto range = drawRange(document, last);
        const std::vector<int> chosen = {3 + static_cast<int>(random() % 4),
                                         8 + static_cast<int>(random() % 6), last};
        std::string carrier;
        for (const auto& [frame, pixels] : drawFrames(document, chosen, &carrier))
            EXPECT_TRUE(pixels == range.at(frame))
                << "seed " << seed << ", frame " << frame << ", " << carrier;
        carrying += !carrier.empty();
        for (const auto& [frame, pixels] : drawFrames(document, chosen, nullptr, 1))
            differing += pixels != range.at(frame);
    }
    // Of both kinds there are enough to tell something.
    EXPECT_GT(carrying, 10);
    EXPECT_LT(carrying, 45);
    EXPECT_GT(differing, 10);
}

} // namespace helvantine::test
