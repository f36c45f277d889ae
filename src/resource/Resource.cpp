// SPDX-License-Identifier: MIT
#include <helvantine/resource/Resource.h>

#include "object/AddedCheck.h"
#include "resource/MissingResourceImporter.h"

#include <helvantine/core/Report.h>
#include <helvantine/plugin/PluginManager.h>
#include <helvantine/serialize/FxSerializer.h>

#include <algorithm>

namespace helvantine
{

namespace
{

// The smallest record: folder flag, id, length of an empty name, expanded flag, number of children.
constexpr std::uint32_t smallestRecord = 1 + 16 + 4 + 1 + 4;

// The last version whose records hold a description.
constexpr int lastVersionWithDescription = 5;

// Folders first; within folders and within the rest the names descend, deliberately.
bool standsBefore(const SmartRef<Resource>& a, const SmartRef<Resource>& b)
{
    if (a->isFolder() != b->isFolder())
        return a->isFolder();
    return a->getName() > b->getName();
}

/// The way up from a resource to the top of its tree, or to `stop` if that is on it.
const Resource* getTop(const Resource& resource, const Resource* stop)
{
    const Resource* top = &resource;
    while (top != stop && top->getParent())
        top = top->getParent();
    return top;
}

SmartRef<ResourceImporter> readImporter(FxSerializer& serializer)
{
    UniqueId classId;
    serializer.m_in.readUniqueId(classId);
    if (serializer.failed())
        return {};
    SmartRef<ResourceImporter> importer(createPluginOfType<ResourceImporter>(classId));
    if (!importer)
        importer = new MissingResourceImporter(classId);
    importer->serialize(serializer);
    return importer;
}

// What keeps the place of a resource that its importer can't make now: nothing is lost with the next save.
SmartRef<Resource> standIn(ResourceImporter& importer)
{
    SmartRef<Resource> resource(importer.createResource());
    if (!resource)
        resource = new Resource();
    resource->setImporter(&importer);
    return resource;
}

/// What the importer makes, or else a stand-in for it and why. The loader's own words are part of that.
SmartRef<Resource> importAgain(ResourceImporter& importer, std::string& problem)
{
    ProblemCapture capture;
    const ImportResult result = importer.import(nullptr, nullptr);
    if (result.resource)
        return result.resource;
    SmartRef<Resource> resource = standIn(importer);
    const std::string file = resource->getFilename();
    problem = result.message.empty() ? "file '" + file + "' can't be loaded" : result.message;
    if (const std::vector<Problem> words = capture.take(); !words.empty()) {
        const bool isNamed = words[0].text.starts_with(file + ": ");
        problem += ": " + (isNamed ? words[0].text.substr(file.size() + 2) : words[0].text);
    }
    return resource;
}

void noteProblem(FxSerializer& serializer, const Resource& resource, const std::string& problem)
{
    reportProblem("resource", resource.getName() + ": " + problem);
    if (serializer.getProblems().size() >= FxSerializer::s_maxProblems)
        return; // a hostile document has many more, each with a long way to tell
    const std::string folder = serializer.describePath();
    serializer.addProblem({resource.getFilename(), "resource", resource.getName(), 0, problem,
                           "what its importer can load", false, LoadProblem::Kind::ResourceFile,
                           (folder.empty() ? folder : folder + '/') + resource.getName()});
}

} // namespace

std::uint32_t Resource::s_treeEdits = 0;

Resource::Resource() : m_id(generateUniqueId()) {}

Resource::~Resource()
{
    for (const auto& child : m_children)
        --child->m_listCount;
}

std::vector<std::string> Resource::getFiles() const
{
    return {};
}

void Resource::addResource(Resource* child)
{
    if (!canAdd(child, "resource", m_name))
        return;
    append(child);
    sort();
}

void Resource::append(Resource* child)
{
    m_children.emplace_back(child);
    child->m_parent = this;
    ++child->m_listCount;
}

void Resource::removeResource(Resource* child)
{
    const auto found = std::find_if(m_children.begin(), m_children.end(),
                                    [&](const auto& entry) { return entry->m_id == child->m_id; });
    if (found == m_children.end())
        return;
    child->m_parent = nullptr;
    --(*found)->m_listCount;
    m_children.erase(found);
    sort();
}

bool Resource::moveTo(Resource& folder)
{
    if (!canMoveTo(folder))
        return false;
    const SmartRef<Resource> self(this);
    m_listCount -= static_cast<int>(std::erase(m_parent->m_children, this));
    folder.addResource(this);
    return true;
}

bool Resource::canMoveTo(const Resource& folder) const
{
    const char* whyNot = nullptr;
    if (!m_parent)
        whyNot = "it is in no folder";
    else if (getTop(folder, this) == this)
        whyNot = "that is or lies below the resource itself";
    else if (getTop(folder, nullptr) != getTop(*this, nullptr))
        whyNot = "that is in another tree";
    if (whyNot)
        reportProblem("resource", '\'' + m_name + "' isn't moved to '" + folder.m_name + "': " + whyNot);
    return !whyNot;
}

Resource* Resource::findResource(const UniqueId& id) const
{
    if (m_id == id)
        return const_cast<Resource*>(this);
    for (const auto& child : m_children) {
        if (Resource* found = child->findResource(id))
            return found;
    }
    return nullptr;
}

void Resource::sort()
{
    std::stable_sort(m_children.begin(), m_children.end(), standsBefore);
    ++s_treeEdits;
}

void Resource::setId(const UniqueId& id)
{
    m_id = id;
    if (m_listCount > 0) // nodes make resources that are in no tree
        ++s_treeEdits;
}

void Resource::setImporter(ResourceImporter* importer)
{
    m_importer = importer;
}

void Resource::serialize(FxSerializer& serializer)
{
    serializer.tick();
    if (serializer.m_writing)
        write(serializer);
    else
        read(serializer);
}

void Resource::write(FxSerializer& serializer) const
{
    // Without an importer there is no recipe to write. As a folder the resource keeps id, name and children.
    const bool asFolder = m_isFolder || !m_importer;
    if (asFolder && !m_isFolder)
        reportProblem("resource", m_name + ": has no importer and is saved as a folder");

    OutStream& out = serializer.m_out;
    out.writeBool(asFolder);
    if (!asFolder) {
        m_importer->serialize(serializer);
        for (const std::string& file : getFiles()) {
            if (!file.empty())
                serializer.addFileToZip(file.c_str());
        }
    }
    out.writeUniqueId(m_id);
    out.writeString(m_name);
    if (serializer.m_version <= lastVersionWithDescription)
        out.writeString(m_description);
    out.writeBool(m_expanded);
    out.writeUInt(static_cast<std::uint32_t>(m_children.size()));
    for (const auto& child : m_children)
        child->serialize(serializer);
}

void Resource::read(FxSerializer& serializer)
{
    const FxSerializer::Record record(serializer, "resource", &m_name);
    InStream& in = serializer.m_in;
    UniqueId id;
    std::string name;
    in.readUniqueId(id);
    in.readString(name);
    if (serializer.m_version <= lastVersionWithDescription)
        in.readString(m_description);
    in.readBool(m_expanded);
    if (serializer.failed())
        return;
    setId(id);
    m_name = std::move(name);

    std::uint32_t count = 0;
    if (!serializer.readCount(count, smallestRecord, "resources"))
        return;
    for (std::uint32_t i = 0; i < count && !serializer.failed(); ++i)
        readChild(serializer);
    sort();
}

void Resource::readChild(FxSerializer& serializer)
{
    bool isFolder = false;
    serializer.m_in.readBool(isFolder);
    SmartRef<Resource> child;
    std::string problem;
    if (isFolder) {
        child = new Resource();
        child->setIsFolder(true);
    } else {
        const SmartRef<ResourceImporter> importer = readImporter(serializer);
        if (serializer.failed())
            return;
        child = importAgain(*importer, problem);
    }
    child->serialize(serializer);
    append(child.get());
    ++s_treeEdits;
    if (!problem.empty())
        noteProblem(serializer, *child, problem);
}

} // namespace helvantine
