// VELL: data-driven hierarchical state machines.
// tests/robustness/Conditions.cpp: what the tests of hard conditions share.
#include "tests/robustness/Conditions.h"

#include <durm/DURMBaseLib.h>

#include <atomic>
#include <cstdlib>
#include <cstring>

namespace vell::test
{
namespace
{

using namespace DURMBaseLib;

constexpr int kErrorLevel = 3;

std::atomic<std::size_t> lines;
std::atomic<std::size_t> errors;
std::atomic<std::size_t> failedInits;

void Count(int level, const char* text)
{
    ++lines;
    errors += level == kErrorLevel ? 1 : 0;
    failedInits += std::strstr(text, "Parsing JSON file has caused an exception") != nullptr;
}

std::vector<Json> EveryAttribute()
{
    return {Attribute("surface", "QString", "a text that is too long for a string object"),
            Attribute("steps", "int", -4),
            Attribute("length", "double", 0.75),
            Attribute("offset", "QVector2D", "1,-2"),
            Attribute("pivot", "QVector3D", "1,2,3"),
            Attribute("tint", "QVector4D", "0,0.5,1,1"),
            Attribute("loud", "bool", true)};
}

} // namespace

unsigned long long CountFromEnvironment(const char* name, unsigned long long otherwise)
{
    const char* text = std::getenv(name);
    return text == nullptr ? otherwise : std::strtoull(text, nullptr, 10);
}

QuietLog::QuietLog()
{
    Clear();
    Resume();
}

QuietLog::~QuietLog()
{
    SetLogCallBackBase(nullptr);
}

std::size_t QuietLog::Lines() const
{
    return lines;
}

std::size_t QuietLog::Errors() const
{
    return errors;
}

std::size_t QuietLog::FailedInits() const
{
    return failedInits;
}

void QuietLog::Clear()
{
    lines = 0;
    errors = 0;
    failedInits = 0;
}

void QuietLog::Resume()
{
    SetLogCallBackBase(Count);
}

DocumentBuilder WholeDocument()
{
    JsonObject skeleton;
    skeleton.Set(JSON_ModelFileName, "hero.mdl").Set(JSON_SkeletonFileName, "hero.skel");
    return DocumentBuilder()
        .Start(10)
        .Skeleton(skeleton)
        .Parameter(BoolParameter("go", false))
        .Parameter(BoolParameter("hit", false).Set(JSON_ParameterResetEachFrame, true))
        .Parameter(IntParameter("count", 0))
        .Parameter(FloatParameter("speed", 0.5))
        .Parameter(VectorParameter(PARAM_Float2, "stick", "3,4"))
        .Parameter(VectorParameter(PARAM_Float3, "aim", "1,2,3"))
        .Parameter(VectorParameter(PARAM_Float4, "turn", "0,0,0,1"))
        .Parameter(MessageParameter("shout", "a message too long for a string object"))
        .Node(Generic("Idle", 10, {100, 101, 102})
                  .Set(JSON_ScriptName, "idle.script")
                  .Set(JSON_Attributes, Json::Array(EveryAttribute())))
        .Node(Clip("Walk", 11, "walk.anim", {103}))
        .Node(Clip("Flinch", 12, "flinch.anim", {105}))
        .Node(Exit("Over", 70))
        .Node(Connector("Door", 30, "entering"))
        .Node(Node(BUILDER_Base, "Note", 40))
        .Node(Transition("Go", 100, 10, 11, {BoolCondition("go", true)}))
        .Node(Transition("Fight", 101, 10, 20, {IntCondition("count", 3, 2)}))
        .Node(Transition("Shout", 102, 10, 11, {MessageCondition("shout", "never")}))
        .Node(Transition("Back", 103, 11, 10, {FloatCondition("speed", 5, 0.0)}))
        .Node(Transition("Recover", 105, 12, 70, {FloatCondition("speed", 3, 1.0)}))
        .Layer("Combat")
        .Node(Substate("Combat", 20, 21, 22))
        .Node(Enter("In", 21, 23, 20))
        .Node(Exit("Out", 22, 20))
        .Node(Generic("Guard", 23, {104}, 20))
        .Node(Transition("Leave", 104, 23, 22, {BoolCondition("go", true)}))
        .Node(BoolCondition("go", true)
                  .Set(JSON_Name, "OnGo")
                  .Set(JSON_ID, 60)
                  .Set(JSON_BuilderType, BuilderName(BUILDER_Condition)))
        .GlobalNode(Global("Anywhere", 50, {500}))
        .GlobalNode(Transition("Hit", 500, 50, 12, {BoolCondition("hit", true)}));
}

} // namespace vell::test
