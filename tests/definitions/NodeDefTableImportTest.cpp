// VELL: data-driven hierarchical state machines.
// tests/definitions/NodeDefTableImportTest.cpp: the head, skeleton and global sections.
#include "tests/support/NodeTables.h"

#include <gtest/gtest.h>

namespace vell::test
{
namespace
{

using NodeDefTableHead = NodeTableTest;
using NodeDefTableSkeleton = NodeTableTest;
using NodeDefTableGlobal = NodeTableTest;

const char* const kHead = "vell::NodeDefTable::ImportHead";
const char* const kSkel = "vell::NodeDefTable::ImportSkel";
const char* const kModel = "vell::NodeDefTable::ImportSkel_ModelFileName";
const char* const kSkeleton = "vell::NodeDefTable::ImportSkel_SkeletonFileName";
const char* const kGlobal = "vell::NodeDefTable::ImportGlobal";
const char* const kInsert = "vell::NodeDefTable::InsertNode";

/// A head of a version, with everything that a head may hold.
JsonObject Head(int version)
{
    JsonObject head;
    head.Set(JSON_ID, 77).Set(JSON_HeadVersion, version).Set(JSON_GUID, "the guid");
    head.Set(JSON_HeadBuildID, "the build").Set(JSON_HeadMachineType, "character");
    head.Set(JSON_HeadEnterLayer, 3).Set(JSON_HeadEnterNode, 10);
    return head.Set(JSON_HeadSubstateRoot, 11).Set(JSON_HeadValue84, 84);
}

/// What an import of `Head` shows.
Lines HeadLines(const std::string& guid, const std::string& build, const std::string& root,
                const std::string& enter = "10")
{
    return {"9 \n\nHSM Entry Information",
            "9 ---------------------\n\n",
            "6 HSM_ID:\t\t\t77",
            "6 HSM_EnterLayerID:\t3",
            "6 SubstateRootID:    " + root,
            "6 HSM_EnterNodeID:\t" + enter,
            "6 HSM_Type:\t\t\tcharacter",
            "6 HSM_GUID:\t\t\t" + guid,
            "6 HSM_BuildID:\t\t" + build,
            "9 \n\n"};
}

Lines Followed(Lines lines, const std::string& line)
{
    lines.push_back(line);
    return lines;
}

/// Expects that `table` holds `text` under `key`, or nothing.
void ExpectText(Tessel::KVTable table, const char* key, bool isThere, const std::string& text)
{
    ASSERT_EQ(table->FindValue(key) != nullptr, isThere) << key;
    if (isThere)
    {
        EXPECT_EQ(table->GetString(key), text) << key;
    }
}

JsonObject Files()
{
    JsonObject skeleton;
    return skeleton.Set(JSON_ModelFileName, "a.mdl").Set(JSON_SkeletonFileName, "b.skel");
}

} // namespace

TEST_F(NodeDefTableHead, OfVersionThreeIsTakenInWhole)
{
    Fill({Generic("a", 10)});

    EXPECT_EQ(table->ImportHead(Parse(Head(3))), 1);

    EXPECT_EQ(log.Take(), HeadLines("the guid", "the build", "11"));
    EXPECT_EQ(table->enterNodeId, 10u);
    EXPECT_EQ(table->substateRootId, 11u);
    EXPECT_EQ(table->headValue84, 84u);
    EXPECT_STREQ(table->guid, "the guid");
    EXPECT_STREQ(table->buildId, "the build");
    EXPECT_STREQ(table->kvTable->GetString("hsmID"), "the guid");
    EXPECT_STREQ(table->kvTable->GetString("buildID"), "the build");
}

TEST_F(NodeDefTableHead, OfVersionTwoHasNoSubstateRoot)
{
    Fill({Generic("a", 10)});

    EXPECT_EQ(table->ImportHead(Parse(Head(2))), 1);

    EXPECT_EQ(table->substateRootId, 0u);
    EXPECT_EQ(table->headValue84, 0u);
}

TEST_F(NodeDefTableHead, ShowsItsGuidAndItsBuildIdInTheLogAndInTheTree)
{
    const std::string longest(69, 'x');
    const std::string longestBuild = "b" + std::string(68, 'x');
    const struct
    {
        const char* what;
        Json head;
        std::string guid;
        std::string build;
        bool isGuidInTree;
        bool isBuildInTree;
    } cases[] = {
        {"both", Head(2), "the guid", "the build", true, true},
        {"no version with an identity", Head(1), "", "", false, false},
        {"no build id, for which the guid is taken", Head(2).Remove(JSON_HeadBuildID), "the guid",
         "the guid", true, true},
        {"a build id that is no text", Head(2).Set(JSON_HeadBuildID, 5), "the guid", "", true,
         false},
        {"neither", Head(2).Remove(JSON_GUID).Remove(JSON_HeadBuildID), "", "", false, false},
        {"empty texts, of which the build id is written",
         Head(2).Set(JSON_GUID, "").Set(JSON_HeadBuildID, ""), "", "", false, true},
        {"69 characters", Head(2).Set(JSON_GUID, longest).Set(JSON_HeadBuildID, longestBuild),
         longest, longestBuild, true, true}};
    for (const auto& example : cases)
    {
        SCOPED_TRACE(example.what);
        auto* own = alloc.New<NodeDefTable>();
        own->Init(Parse(Json::Array({Generic("a", 10)})), &alloc);
        log.Clear();

        EXPECT_EQ(own->ImportHead(Parse(example.head)), 1);

        EXPECT_EQ(log.Take(), HeadLines(example.guid, example.build, "0"));
        EXPECT_EQ(own->guid, example.guid);
        EXPECT_EQ(own->buildId, example.build);
        ExpectText(own->kvTable, "hsmID", example.isGuidInTree, example.guid);
        ExpectText(own->kvTable, "buildID", example.isBuildInTree, example.build);
        own->Uninit();
    }
}

TEST_F(NodeDefTableHead, DropsTextsOfSeventyCharactersWithoutAWord)
{
    const std::string tooLong(70, 'x');
    Fill({Generic("a", 10)});

    EXPECT_EQ(
        table->ImportHead(Parse(Head(2).Set(JSON_GUID, tooLong).Set(JSON_HeadBuildID, tooLong))),
        1);

    EXPECT_EQ(log.Take(), HeadLines("", "", "0"));
    EXPECT_EQ(table->kvTable->FindValue("hsmID"), nullptr);
    EXPECT_EQ(table->kvTable->FindValue("buildID"), nullptr);
}

TEST_F(NodeDefTableHead, FillsItsFieldsAlsoWithoutATable)
{
    table->ImportHead(Parse(Head(2)));

    EXPECT_STREQ(table->guid, "the guid");
    EXPECT_FALSE(table->kvTable);
}

TEST_F(NodeDefTableHead, ThatIsNoObjectIsRefused)
{
    EXPECT_EQ(table->ImportHead(Parse(Json::Raw("[]"))), 0);

    EXPECT_EQ(log.Take(), (Lines{ErrorBreak(kHead)}));
}

TEST_F(NodeDefTableHead, WithoutAnEntryNodeIsRefusedBehindTheBanner)
{
    Fill({Generic("a", 10)});

    EXPECT_EQ(table->ImportHead(Parse(Head(3).Set(JSON_HeadEnterNode, 0))), 0);

    EXPECT_EQ(log.Take(),
              Followed(HeadLines("the guid", "the build", "11", "0"), ErrorBreak(kHead)));
    EXPECT_EQ(table->enterNodeId, 0u);
    EXPECT_EQ(table->substateRootId, 0u);
    EXPECT_EQ(table->headValue84, 0u);
    EXPECT_STREQ(table->guid, "the guid");
}

TEST_F(NodeDefTableHead, WithAnEntryNodeThatDoesNotExistSucceeds)
{
    Fill({Generic("a", 12)});

    EXPECT_EQ(table->ImportHead(Parse(Head(3))), 1);

    EXPECT_EQ(log.Take(),
              Followed(HeadLines("the guid", "the build", "11"), "3 Entry Node doesn't exist: 10"));
    EXPECT_EQ(table->enterNodeId, 10u);
    EXPECT_EQ(table->substateRootId, 11u);
}

TEST_F(NodeDefTableHead, ThatIsEmptyShowsZeros)
{
    EXPECT_EQ(table->ImportHead(Parse(JsonObject{})), 0);

    EXPECT_EQ(log.Take(),
              (Lines{"9 \n\nHSM Entry Information", "9 ---------------------\n\n",
                     "6 HSM_ID:\t\t\t0", "6 HSM_EnterLayerID:\t0", "6 SubstateRootID:    0",
                     "6 HSM_EnterNodeID:\t0", "6 HSM_Type:\t\t\t", "6 HSM_GUID:\t\t\t",
                     "6 HSM_BuildID:\t\t", "9 \n\n", ErrorBreak(kHead)}));
}

TEST_F(NodeDefTableSkeleton, GivesBothFileNamesAndItsValue)
{
    table->CreateKVTable();

    EXPECT_EQ(table->ImportSkel(Parse(Files().Set(JSON_SkeletonValue89, 89)), &alloc), 1);

    EXPECT_EQ(log.Take(), Lines{});
    EXPECT_STREQ(table->modelFileName, "a.mdl");
    EXPECT_STREQ(table->skeletonFileName, "b.skel");
    EXPECT_EQ(table->skelValue89, 89u);
    EXPECT_STREQ(table->kvTable->GetString("modelfilename"), "a.mdl");
    EXPECT_STREQ(table->kvTable->GetString("skelfilename"), "b.skel");
}

TEST_F(NodeDefTableSkeleton, KeepsItsValueWhenTheMemberIsMissing)
{
    table->skelValue89 = 5;

    table->ImportSkel(Parse(Files()), &alloc);

    EXPECT_EQ(table->skelValue89, 5u);
}

TEST_F(NodeDefTableSkeleton, FillsItsFieldsAlsoWithoutATable)
{
    EXPECT_EQ(table->ImportSkel(Parse(Files()), &alloc), 1);

    EXPECT_STREQ(table->modelFileName, "a.mdl");
    EXPECT_EQ(log.Take(), Lines{});
}

TEST_F(NodeDefTableSkeleton, FitsAnArenaOfTheTextsWithTwoBytesEach)
{
    Arena exact(7 + 8);
    const bool rounded = exact.AllocRaw(1) != nullptr && exact.used != 1;
    exact.Reserve(rounded ? 8 + 8 : 7 + 8);

    EXPECT_EQ(table->ImportSkel(Parse(Files()), &exact), 1);

    EXPECT_EQ(log.Take(), Lines{});
    EXPECT_STREQ(table->skeletonFileName, "b.skel");
}

TEST_F(NodeDefTableSkeleton, SucceedsWithoutAFileNameThatIsAByteTooLong)
{
    Arena small(6);
    table->CreateKVTable();

    EXPECT_EQ(table->ImportSkel(Parse(Files()), &small), 1);

    EXPECT_EQ(log.Take(), (Lines{ErrorBreak(kModel, ""), ErrorBreak(kSkeleton, "")}));
    EXPECT_EQ(table->modelFileName, nullptr);
    EXPECT_EQ(table->skeletonFileName, nullptr);
    EXPECT_EQ(table->kvTable->GetKeyCount(), 0u);
}

TEST_F(NodeDefTableSkeleton, SucceedsWithoutUsableFileNames)
{
    const auto files = [](const Json& name)
    {
        return Files().Set(JSON_ModelFileName, name).Set(JSON_SkeletonFileName, name);
    };
    const struct
    {
        JsonObject skeleton;
        const char* shown;
    } cases[] = {{JsonObject(), "0"}, {files(""), "0"}, {files(1), ""}};
    for (const auto& [skeleton, shown] : cases)
    {
        SCOPED_TRACE(skeleton.Text());
        EXPECT_EQ(
            table->ImportSkel(Parse(JsonObject(skeleton).Set(JSON_SkeletonValue89, 89)), &alloc),
            1);

        EXPECT_EQ(log.Take(), (Lines{ErrorBreak(kModel, shown), ErrorBreak(kSkeleton, shown)}));
        EXPECT_EQ(table->skelValue89, 89u);
    }
}

TEST_F(NodeDefTableSkeleton, TakesNoRoomForEmptyFileNames)
{
    const unsigned int before = alloc.used;

    table->ImportSkel(
        Parse(JsonObject{}.Set(JSON_ModelFileName, "").Set(JSON_SkeletonFileName, "")), &alloc);

    EXPECT_EQ(alloc.used, before);
}

TEST_F(NodeDefTableSkeleton, NeedsAnArenaAndAnObject)
{
    EXPECT_EQ(table->ImportSkel(Parse(Files()), nullptr), 0);
    EXPECT_EQ(table->ImportSkel(Parse(Json(5)), &alloc), 0);

    EXPECT_EQ(log.Take(), (Lines{ErrorBreak(kSkel), ErrorBreak(kSkel)}));
}

TEST_F(NodeDefTableGlobal, NodesAreFiledBesideTheOthers)
{
    Fill({Generic("a", 10), Generic("b", 11)});

    EXPECT_EQ(table->ImportGlobal(Parse(Json::Array({Global("g", 20), Generic("c", 12)})), &alloc),
              1);

    EXPECT_EQ(log.Take(), (Lines{CreatedDef("g"), CreatedDef("c")}));
    EXPECT_EQ(table->globalNodeId, 20u);
    EXPECT_EQ(table->numNodes, 2u);
    EXPECT_EQ(table->nodeIds, (Ids{10, 11, 20, 12}));
    EXPECT_EQ(table->Find(12)->GetIndex(), 3);
    EXPECT_TRUE(table->kvTable->GetTable("20"));
}

TEST_F(NodeDefTableGlobal, TheLastOfSeveralGlobalNodesCounts)
{
    Fill({});

    table->ImportGlobal(Parse(Json::Array({Global("g", 20), Global("h", 19)})), &alloc);

    EXPECT_EQ(table->globalNodeId, 19u);
}

TEST_F(NodeDefTableGlobal, AGlobalNodeOfALayerDoesNotCount)
{
    Fill({Global("g", 20)});

    EXPECT_EQ(table->globalNodeId, 0u);
}

TEST_F(NodeDefTableGlobal, ThatAreNoArrayAreRefused)
{
    EXPECT_EQ(table->ImportGlobal(Parse(Json(5)), &alloc), 0);

    EXPECT_EQ(log.Take(), (Lines{ErrorBreak(kGlobal)}));
}

TEST_F(NodeDefTableGlobal, MayBeNone)
{
    EXPECT_EQ(table->ImportGlobal(Parse(Json::Raw("[]")), &alloc), 1);

    EXPECT_EQ(log.Take(), Lines{});
}

TEST_F(NodeDefTableGlobal, EndWithSuccessAtAnElementThatIsNoObject)
{
    Fill({Generic("a", 10)});

    EXPECT_EQ(table->ImportGlobal(Parse(Json::Array({Json(5), Json(Global("g", 20))})), &alloc), 1);

    EXPECT_EQ(log.Take(), (Lines{ErrorBreak(kGlobal)}));
    EXPECT_EQ(table->globalNodeId, 0u);
    EXPECT_EQ(table->nodes.size(), 1u);
}

TEST_F(NodeDefTableGlobal, EndWithSuccessAtANodeThatCannotBeBuilt)
{
    Fill({Generic("a", 10)});

    EXPECT_EQ(
        table->ImportGlobal(
            Parse(Json::Array({Global("g", 20), Enter("in", 21, 0), Global("h", 22)})), &alloc),
        1);

    EXPECT_EQ(log.Take(),
              (Lines{CreatedDef("g"), CreatedDef("in"), ErrorBreak("vell::EnterDef::Init"),
                     ErrorBreak("vell::NodeDefTable::CreateNodeDef"), NotBuilt(BuilderName(8)),
                     ErrorBreak(kGlobal)}));
    EXPECT_EQ(table->globalNodeId, 20u);
    EXPECT_EQ(table->nodes.size(), 2u);
}

TEST_F(NodeDefTableGlobal, EndWithSuccessAtADuplicateThatIsOfferedTwice)
{
    Fill({Generic("a", 10)});

    EXPECT_EQ(table->ImportGlobal(Parse(Json::Array({Global("g", 10), Global("h", 22)})), &alloc),
              1);

    EXPECT_EQ(log.Take(),
              (Lines{CreatedDef("g"), DuplicateID(10, "g", "a"), ErrorBreak(kInsert),
                     DuplicateID(10, "g", "a"), ErrorBreak(kInsert), ErrorBreak(kGlobal)}));
    EXPECT_EQ(table->globalNodeId, 0u);
    EXPECT_EQ(table->nodeIds, (Ids{10, 10, 10}));
    EXPECT_EQ(table->Find(22), nullptr);
}

} // namespace vell::test
