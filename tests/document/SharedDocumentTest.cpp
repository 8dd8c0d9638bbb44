// VELL: data-driven hierarchical state machines.
// tests/document/SharedDocumentTest.cpp: which texts share a parsed document, and for how long.
#include "document/SharedDocument.h"

#include <gtest/gtest.h>
#include <rapidjson/document.h>

#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace vell::test
{
namespace
{

/// The text of the value "name", or "-" when nothing is held.
std::string NameIn(const SharedDocument& document)
{
    const GenericValue* root = document.Root();
    return root == nullptr ? "-" : (*root)["name"].GetString();
}

std::string Named(const std::string& name)
{
    return "{\"name\":\"" + name + "\"}";
}

} // namespace

TEST(SharedDocument, IsOneForEqualTexts)
{
    const std::string text = Named("Walk");
    const std::string same = text;
    SharedDocument first;
    SharedDocument second;

    ASSERT_TRUE(first.Hold(text));
    ASSERT_TRUE(second.Hold(same));

    EXPECT_EQ(first.Root(), second.Root());
    EXPECT_EQ(NameIn(second), "Walk");
}

TEST(SharedDocument, TellsTextsOfOneLengthApart)
{
    SharedDocument walk;
    SharedDocument jump;
    SharedDocument jumpAgain;

    ASSERT_TRUE(walk.Hold(Named("Walk")));
    ASSERT_TRUE(jump.Hold(Named("Jump")));
    ASSERT_TRUE(jumpAgain.Hold(Named("Jump")));

    EXPECT_EQ(NameIn(walk), "Walk");
    EXPECT_EQ(NameIn(jump), "Jump");
    EXPECT_EQ(jump.Root(), jumpAgain.Root());
}

TEST(SharedDocument, LivesAsLongAsItsLastHolder)
{
    std::optional<SharedDocument> holders[3];
    for (std::optional<SharedDocument>& holder : holders)
    {
        ASSERT_TRUE(holder.emplace().Hold(Named("Walk")));
    }
    const char* name = (*holders[2]->Root())["name"].GetString();

    holders[0].reset();
    holders[1].reset();

    EXPECT_STREQ(name, "Walk");
    EXPECT_EQ(NameIn(*holders[2]), "Walk");
}

// Of three texts of one length, the one in the middle goes first.
TEST(SharedDocument, LeavesOthersOfItsLengthWhenItGoes)
{
    SharedDocument first;
    std::optional<SharedDocument> second(std::in_place);
    SharedDocument third;
    ASSERT_TRUE(first.Hold(Named("Walk")));
    ASSERT_TRUE(second->Hold(Named("Jump")));
    ASSERT_TRUE(third.Hold(Named("Fall")));

    second.reset();

    SharedDocument firstAgain;
    SharedDocument thirdAgain;
    ASSERT_TRUE(firstAgain.Hold(Named("Walk")));
    ASSERT_TRUE(thirdAgain.Hold(Named("Fall")));
    EXPECT_EQ(first.Root(), firstAgain.Root());
    EXPECT_EQ(third.Root(), thirdAgain.Root());
}

TEST(SharedDocument, HoldsNothingOfAMalformedText)
{
    for (const char* text : {"", "{", "{\"name\":}", "{} {}"})
    {
        SharedDocument document;
        EXPECT_FALSE(document.Hold(text)) << text;
        EXPECT_EQ(document.Root(), nullptr) << text;
    }
}

TEST(SharedDocument, HoldsTextsUpTo256KiB)
{
    const std::size_t limit = 256 * 1024;
    const std::string most = Named(std::string(limit - Named("").size(), 'n'));
    SharedDocument document;
    SharedDocument tooLarge;

    EXPECT_TRUE(document.Hold(most));
    EXPECT_FALSE(tooLarge.Hold(most + " "));
    EXPECT_EQ(tooLarge.Root(), nullptr);
}

TEST(SharedDocument, IsHeldAndReleasedByManyThreads)
{
    std::vector<std::thread> threads;
    int right[4] = {};
    for (int& count : right)
    {
        threads.emplace_back(
            [&count]
            {
                for (int i = 0; i < 500; ++i)
                {
                    const std::string name = i % 2 == 0 ? "Walk" : "Jump";
                    SharedDocument document;
                    count += document.Hold(Named(name)) && NameIn(document) == name ? 1 : 0;
                }
            });
    }
    for (std::thread& thread : threads)
    {
        thread.join();
    }

    for (const int count : right)
    {
        EXPECT_EQ(count, 500);
    }
}

} // namespace vell::test
