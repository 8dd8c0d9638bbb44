// VELL: data-driven hierarchical state machines.
// tools/check/Code.cpp: finding a code, and the page about all of them.
#include "tools/check/Code.h"

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <sstream>
#include <stdexcept>

namespace vell::check
{
namespace
{

struct Family
{
    const char* title;
    const CodeTable& (*table)();
};

constexpr Family kFamilies[] = {
    {"Text", TextCodes},       {"Members", MemberCodes},       {"Words", WordCodes},
    {"Ids", IdCodes},          {"References", ReferenceCodes}, {"Types", TypeCodes},
    {"Meaning", MeaningCodes}, {"Loading", LoadingCodes},      {"Sources", SourceCodes},
};

constexpr std::size_t kPageWidth = 118;
constexpr std::size_t kTerminalWidth = 80;

constexpr const char* kPageHead = R"(# What `vell check` finds

`vell check` reads machine documents and reports what is wrong with them, also what the library accepts without a
word. Each finding has a code. `vell check --explain CODE` prints its section of this page.

- An **error**: the library refuses the document or loses a part of it, or a reference leads nowhere.
- A **warning**: the library accepts it, but it is hardly meant.
- A **note**: worth knowing.

`--allow CODE` leaves a code out. The member `"$allow": ["CODE"]` does so for the object that it is in and for all
within it.
)";

/// Breaks a paragraph into lines.
std::string Wrap(const std::string& paragraph, std::size_t width)
{
    std::string all;
    std::size_t line = 0;
    std::istringstream words(paragraph);
    for (std::string word; words >> word;)
    {
        const bool fits = line + 1 + word.size() <= width;
        all += line == 0 ? "" : fits ? " " : "\n";
        line = line == 0 || !fits ? word.size() : line + 1 + word.size();
        all += word;
    }
    return all;
}

std::string Example(const char* title, const char* text)
{
    return std::string(title) + "\n\n```json\n" + text + "\n```\n";
}

} // namespace

const std::vector<const CodeEntry*>& AllCodes()
{
    static const std::vector<const CodeEntry*> all = []
    {
        std::vector<const CodeEntry*> entries;
        for (const Family& family : kFamilies)
        {
            for (const CodeEntry& entry : family.table())
            {
                entries.push_back(&entry);
            }
        }
        std::sort(entries.begin(), entries.end(),
                  [](const CodeEntry* left, const CodeEntry* right)
                  {
                      return left->code < right->code;
                  });
        return entries;
    }();
    return all;
}

const CodeEntry& GetEntry(Code code)
{
    for (const CodeEntry* entry : AllCodes())
    {
        if (entry->code == code)
        {
            return *entry;
        }
    }
    throw std::logic_error("no entry for " + NameOf(code)); // GCOVR_EXCL_LINE: a missing entry
}

const CodeEntry* FindEntry(std::string_view name)
{
    std::string wanted(name);
    for (char& c : wanted)
    {
        c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    }
    for (const CodeEntry* entry : AllCodes())
    {
        if (NameOf(entry->code) == wanted)
        {
            return entry;
        }
    }
    return nullptr;
}

std::string NameOf(Code code)
{
    const std::string digits = std::to_string(static_cast<int>(code));
    return "VELL" + std::string(digits.size() < 3 ? 3 - digits.size() : 0, '0') + digits;
}

const char* NameOf(Severity severity)
{
    switch (severity)
    {
    case Severity::Note:
        return "note";
    case Severity::Warning:
        return "warning";
    case Severity::Error:
        break;
    }
    return "error";
}

std::string CodesPage()
{
    std::string page = kPageHead;
    for (const Family& family : kFamilies)
    {
        page += std::string("\n## ") + family.title + "\n";
        for (const CodeEntry& entry : family.table())
        {
            page += "\n### " + NameOf(entry.code) + ": " + entry.title + "\n\n" +
                    Wrap(std::string(entry.severity == Severity::Error     ? "An error. "
                                     : entry.severity == Severity::Warning ? "A warning. "
                                                                           : "A note. ") +
                             entry.explanation,
                         kPageWidth) +
                    "\n\n" + Example("Reported:", entry.bad) + "\n" +
                    Example("Correct:", entry.good);
        }
    }
    return page;
}

std::string Explain(const CodeEntry& entry)
{
    const auto indented = [](const char* text)
    {
        std::string all = std::string("    ") + text;
        for (std::size_t at = 0; (at = all.find('\n', at)) != std::string::npos; at += 5)
        {
            all.replace(at, 1, "\n    ");
        }
        return all + "\n";
    };
    return NameOf(entry.code) + " (" + NameOf(entry.severity) + "): " + entry.title + "\n\n" +
           Wrap(entry.explanation, kTerminalWidth) + "\n\nReported:\n\n" + indented(entry.bad) +
           "\nCorrect:\n\n" + indented(entry.good);
}

} // namespace vell::check
