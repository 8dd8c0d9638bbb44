// VELL: data-driven hierarchical state machines.
// tests/tools/SampleMistakes.cpp: making a mistake, and the findings as lines.
#include "tests/tools/SampleMistakes.h"

#include "tests/support/SourceDir.h"
#include "tools/check/Check.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

namespace vell::test
{
namespace
{

std::string Place(const source::Span& span)
{
    return std::to_string(span.begin.line) + ":" + std::to_string(span.begin.column);
}

} // namespace

Lines FindingsOf(const std::string& text)
{
    const check::Findings findings = check::CheckDocument(source::ReadText(text));
    Lines lines;
    for (const check::Finding& finding : findings.list)
    {
        const char* severity = check::NameOf(check::GetEntry(finding.code).severity);
        lines.push_back(Place(finding.where) + ": " + severity + " " + check::NameOf(finding.code) +
                        ": " + finding.message + (finding.hint.empty() ? "" : "; " + finding.hint));
        if (finding.hasOther)
        {
            lines.push_back("  " + Place(finding.other) + ": " + finding.otherNote);
        }
    }
    return lines;
}

std::string ReadDocument(const char* path)
{
    std::ifstream file(std::string(SourceDir()) + "/" + path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

void ExpectFound(const std::vector<Mistake>& mistakes)
{
    const std::string sample = ReadDocument("tests/data/character.json");
    for (const Mistake& mistake : mistakes)
    {
        const std::string node = mistake.node;
        const std::size_t begin = node.empty() ? 0 : sample.find("{\"name\": \"" + node + "\"");
        const std::size_t place = sample.find(mistake.right, begin);
        ASSERT_NE(place, std::string::npos) << node << ": " << mistake.right;
        std::string text = sample;
        text.replace(place, std::string(mistake.right).size(), mistake.wrong);

        EXPECT_EQ(FindingsOf(text), mistake.found) << node << ": " << mistake.wrong;
    }
}

} // namespace vell::test
