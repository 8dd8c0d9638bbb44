// VELL: data-driven hierarchical state machines.
// tests/support/NodeTables.h: a table of definitions without a machine.
#pragma once

#include "definitions/NodeDefTable.h"
#include "tests/support/Definitions.h"
#include "tests/support/DocumentBuilder.h"
#include "tests/support/LogRecorder.h"

#include <gtest/gtest.h>

#include <list>
#include <string>
#include <vector>

namespace vell::test
{

/// Tests with a table of definitions in an arena. The log is recorded.
class NodeTableTest : public testing::Test
{
protected:
    /// Gives the parsed text, which lives as long as the test.
    const GenericValue& Parse(const Json& json)
    {
        return *parsed.emplace_back(json);
    }

    int Init(const std::vector<Json>& nodes)
    {
        return table->Init(Parse(Json::Array(nodes)), &alloc);
    }

    /// Builds a node and forgets the lines.
    BaseDef* Build(const Json& node)
    {
        BaseDef* def = table->CreateNodeDef(Parse(node), &alloc);
        log.Clear();
        return def;
    }

    /// Builds an array of nodes and forgets the lines.
    void Fill(const std::vector<Json>& nodes)
    {
        ASSERT_EQ(Init(nodes), 1);
        log.Clear();
    }

    LogRecorder log;
    std::list<ParsedJson> parsed;
    Arena alloc;
    NodeDefTable* table = alloc.New<NodeDefTable>();
};

/// The line of a definition that could not be built.
inline std::string NotBuilt(const std::string& builder)
{
    return "3 Failed to create builder type - (" + builder + ")";
}

inline std::string DuplicateID(unsigned int id, const std::string& added, const std::string& old)
{
    return "3 Duplicate ID (" + std::to_string(id) + ") error: " + added + " conflicts with " + old;
}

} // namespace vell::test
