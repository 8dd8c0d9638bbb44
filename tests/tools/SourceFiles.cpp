// VELL: data-driven hierarchical state machines.
// tests/tools/SourceFiles.cpp: compiling from memory.
#include "tests/tools/SourceFiles.h"

#include <algorithm>

namespace vell::test
{
namespace
{

void Sort(author::Made& made)
{
    std::sort(made.members.begin(), made.members.end(),
              [](const author::MadeMember& left, const author::MadeMember& right)
              {
                  return left.name < right.name;
              });
    for (author::MadeMember& member : made.members)
    {
        Sort(member.value);
    }
    for (author::Made& element : made.elements)
    {
        Sort(element);
    }
}

std::string SortedText(const source::Text& text, const source::Value& value)
{
    author::Made made = author::Made::Copy(text.bytes, value);
    Sort(made);
    return author::LaidOut(made);
}

} // namespace

author::Compiled CompileFiles(const Files& files)
{
    return author::Compile("a.hsm.json",
                           [&files](const std::string& path)
                           {
                               const auto found = files.find(path);
                               return found == files.end() ? author::FileContent{"", "no such file"}
                                                           : author::FileContent{found->second, ""};
                           });
}

author::Compiled CompileText(const std::string& text)
{
    return CompileFiles({{"a.hsm.json", text}});
}

std::string SourceWith(const std::string& states, const std::string& members)
{
    return R"({"machine": "test", "start": "Stand",
"parameters": {"sees": false, "speed": 0.0, "combo": 0, "use": {"message": "door"},
               "stick": {"float2": [0, 0]}},
"states": {"Stand": {}, "Walk": {})" +
           (states.empty() ? "" : ",\n" + states) + "}" + members + "}\n";
}

std::string ProblemsOf(const author::Compiled& compiled)
{
    std::string lines;
    for (const check::Finding& finding : compiled.problems.list)
    {
        const std::string& path = compiled.files[finding.file].path;
        lines += path + ":" + std::to_string(finding.where.begin.line) + ":" +
                 std::to_string(finding.where.begin.column) + ": " + finding.message +
                 (finding.hint.empty() ? "" : "; " + finding.hint) + "\n";
    }
    return lines;
}

std::string PartOf(const std::string& document, DURMBaseLib::__JSONTYPES__ member)
{
    const source::Text text = source::ReadText(document);
    const source::Value* const value = text.root.Find(DURMBaseLib::GetJsonName(member));
    return value == nullptr ? "" : SortedText(text, *value);
}

std::string Sorted(const std::string& document)
{
    const source::Text text = source::ReadText(document);
    return SortedText(text, text.root);
}

} // namespace vell::test
