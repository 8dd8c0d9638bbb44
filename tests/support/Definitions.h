// VELL: data-driven hierarchical state machines.
// tests/support/Definitions.h: definitions built without a machine.
#pragma once

#include <vell/BaseDef.h>
#include <vell/HSMAlloc.h>

#include "tests/support/Json.h"

#include <rapidjson/document.h>

#include <string>
#include <vector>

namespace vell::test
{

/// An arena of its own; objects in it go with it.
class Arena : public HSMAlloc
{
public:
    explicit Arena(unsigned int size = 65536)
    {
        Reserve(size);
    }
};

/// A plain definition whose inside a test may look at.
class OpenDef : public BaseDef
{
public:
    using BaseDef::BaseDef;

    using BaseDef::AddHead;
    using BaseDef::AddTail;
    using BaseDef::attribs;
    using BaseDef::builderType;
    using BaseDef::childIds;
    using BaseDef::CreateKVTable;
    using BaseDef::DestroyActions;
    using BaseDef::DestroyKVTable;
    using BaseDef::executeActions;
    using BaseDef::exitConnector;
    using BaseDef::index;
    using BaseDef::Init_Attrib;
    using BaseDef::Init_Attribs;
    using BaseDef::kvTable;
    using BaseDef::numAttribs;
    using BaseDef::numChildren;
    using BaseDef::numEnter;
    using BaseDef::numExecute;
    using BaseDef::numExit;
    using BaseDef::reserved;
    using BaseDef::scriptName;
    using BaseDef::TabAddAttrib;
    using BaseDef::TabSetName;
    using BaseDef::Uninit_Attrib;
    using BaseDef::Uninit_Attribs;
};

/// A parsed JSON text, which has to live as long as what was built from it.
class ParsedJson
{
public:
    explicit ParsedJson(const Json& json)
    {
        document.Parse(json.Text().c_str());
    }

    const GenericValue& operator*() const
    {
        return document;
    }

private:
    GenericDocument document;
};

/// A definition of class T in an arena of its own, made by the class's factory and initialised from
/// a node.
template <class T>
class Built
{
public:
    explicit Built(const Json& json, unsigned int arenaSize = 65536)
        : alloc(arenaSize), node(json), def(static_cast<T*>(T::Create(*node, &alloc)))
    {
        result = def == nullptr ? 0 : def->Init(*node, &alloc);
    }
    ~Built()
    {
        if (def != nullptr && result != 0)
        {
            def->Uninit();
        }
    }
    Built(const Built&) = delete;
    Built& operator=(const Built&) = delete;

    T* operator->() const
    {
        return def;
    }
    T& operator*() const
    {
        return *def;
    }

    Arena alloc;
    ParsedJson node;
    T* def;         ///< null when the factory gave none
    int result = 0; ///< of Init
};

/// Ids of a definition's children.
inline std::vector<unsigned int> ChildIds(const BaseDef& def)
{
    std::vector<unsigned int> ids;
    for (unsigned int i = 0; i < def.GetNumChildren(); ++i)
    {
        ids.push_back(def.GetChildID(i));
    }
    return ids;
}

/// The line that a definition writes at the end of its initialisation.
inline std::string CreatedDef(const std::string& name)
{
    return "6 Created new BaseDef: " + name;
}
inline std::string FailedDef(const std::string& name)
{
    return "3 Failed to create new BaseDef: " + name;
}

} // namespace vell::test
