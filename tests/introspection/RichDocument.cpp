// VELL: data-driven hierarchical state machines.
// tests/introspection/RichDocument.cpp: the pieces of the rich document.
#include "tests/introspection/RichDocument.h"

namespace vell::test
{
namespace
{

using namespace DURMBaseLib;

std::vector<Json> OneAttributeOfEachClass()
{
    return {Attribute("surface", "QString", "stone"), Attribute("steps", "int", -4),
            Attribute("length", "double", 0.75),      Attribute("offset", "QVector2D", "1,-2"),
            Attribute("pivot", "QVector3D", "1,2,3"), Attribute("tint", "QVector4D", "0,0.5,1,1"),
            Attribute("loud", "bool", true)};
}

JsonObject ConditionNode(const std::string& name, unsigned int id)
{
    JsonObject node = BoolCondition("go", true);
    return node.Set(JSON_Name, name)
        .Set(JSON_ID, id)
        .Set(JSON_BuilderType, BuilderName(BUILDER_Condition));
}

} // namespace

DocumentBuilder RichDocument()
{
    JsonObject skeleton;
    skeleton.Set(JSON_ModelFileName, "hero.mdl").Set(JSON_SkeletonFileName, "hero.skel");
    return DocumentBuilder()
        .Start(10)
        .Skeleton(skeleton)
        .Parameter(BoolParameter("go", false))
        .Parameter(BoolParameter("fight", false))
        .Parameter(BoolParameter("hit", false))
        .Parameter(IntParameter("count", -3))
        .Parameter(FloatParameter("speed", 0.5))
        .Parameter(VectorParameter(PARAM_Float2, "stick", "3,4"))
        .Parameter(VectorParameter(PARAM_Float3, "aim", "1,2,3"))
        .Parameter(VectorParameter(PARAM_Float4, "turn", "0,0,0,1"))
        .Parameter(MessageParameter("shout", "hey"))
        .Layer("Base")
        .Node(Generic("Idle", 10, {100, 101})
                  .Set(JSON_ScriptName, "idle.script")
                  .Set(JSON_Attributes, Json::Array(OneAttributeOfEachClass())))
        .Node(Clip("Walk", 11, "walk.anim"))
        .Node(Clip("Flinch", 12, "flinch.anim"))
        .Node(Transition("Go", 100, 10, 11, {BoolCondition("go", true)}))
        .Node(Transition("Fight", 101, 10, 20, {BoolCondition("fight", true)}))
        .Node(Connector("Door", 30, "entering"))
        .Node(Node(BUILDER_Base, "Note", 40))
        .Layer("Combat")
        .Node(Substate("Combat", 20, 21, 22))
        .Node(Enter("In", 21, 23, 20))
        .Node(Exit("Out", 22, 20))
        .Node(Generic("Guard", 23, {}, 20)
                  .Set(JSON_Attributes, Json::Array({Attribute("surface", "QString", "mat")})))
        .Node(ConditionNode("OnGo", 60))
        .GlobalNode(Global("Anywhere", 50, {500}))
        .GlobalNode(Transition("Hit", 500, 50, 12, {BoolCondition("hit", true)}));
}

} // namespace vell::test
