// VELL: data-driven hierarchical state machines.
// tools/diff/DifferenceText.cpp: the three formats.
#include "tools/diff/DifferenceText.h"

#include "tools/source/Printable.h"

#include <rapidjson/prettywriter.h>
#include <rapidjson/stringbuffer.h>

#include <cstring>

namespace vell::diff
{
namespace
{

constexpr const char* kArrow = " \xE2\x86\x92 ";

using Writer = rapidjson::PrettyWriter<rapidjson::StringBuffer>;

const char* TitleOf(Subject subject)
{
    switch (subject)
    {
    case Subject::Head:
        return "head";
    case Subject::Parameter:
        return "parameters";
    case Subject::Layer:
        return "layers";
    case Subject::State:
        return "states";
    case Subject::Transition:
        return "transitions";
    case Subject::Skeleton:
        return "skeleton";
    case Subject::Other:
        break;
    }
    return "other members";
}

const char* WordOf(Subject subject)
{
    switch (subject)
    {
    case Subject::Head:
        return "head";
    case Subject::Parameter:
        return "parameter";
    case Subject::Layer:
        return "layer";
    case Subject::State:
        return "state";
    case Subject::Transition:
        return "transition";
    case Subject::Skeleton:
        return "skeleton";
    case Subject::Other:
        break;
    }
    return "other";
}

const char* WordOf(Change change)
{
    switch (change)
    {
    case Change::Added:
        return "added";
    case Change::Removed:
        return "removed";
    case Change::Moved:
        return "moved";
    case Change::Reordered:
        return "reordered";
    case Change::Changed:
        break;
    }
    return "changed";
}

const char* MarkOf(Change change)
{
    return change == Change::Added ? "+ " : change == Change::Removed ? "- " : "~ ";
}

/// Head, skeleton and other members have no subject but themselves.
bool IsWhole(const Difference& difference)
{
    return difference.subject == Subject::Head || difference.subject == Subject::Skeleton ||
           difference.subject == Subject::Other;
}

std::string NameOf(const Difference& difference)
{
    if (difference.change == Change::Reordered)
    {
        return std::string("order of the ") + TitleOf(difference.subject);
    }
    if (difference.subject == Subject::Layer)
    {
        return difference.name.empty() ? "a layer without a name" : difference.name;
    }
    return NameAndId(difference.name, difference.id);
}

std::string DescribeDetail(const Detail& detail)
{
    switch (detail.change)
    {
    case Change::Moved:
        return "moved from " + (detail.what == "layer" ? "layer " + detail.before : detail.before) +
               " to " + (detail.what == "layer" ? "layer " + detail.after : detail.after);
    case Change::Reordered:
        return "order of the " + detail.what +
               (detail.before.empty() ? "" : ": " + detail.before + kArrow + detail.after);
    case Change::Added:
    case Change::Removed:
        return detail.what + " " + detail.before + detail.after;
    case Change::Changed:
        break;
    }
    return detail.what + " " + detail.before + kArrow + detail.after;
}

/// What is behind the name of a difference.
std::string Behind(const Difference& difference)
{
    return difference.description.empty() ? "" : ": " + difference.description;
}

class Counts
{
public:
    void Add(const Difference& difference)
    {
        if (!IsWhole(difference))
        {
            Add(difference.change);
            return;
        }
        for (const Detail& detail : difference.details)
        {
            Add(detail.change);
        }
    }

    std::string Text() const
    {
        std::string text;
        const auto append = [&text](int count, const char* word)
        {
            if (count != 0)
            {
                text += (text.empty() ? "" : ", ") + std::to_string(count) + " " + word;
            }
        };
        append(added, "added");
        append(removed, "removed");
        append(changed, "changed");
        return text;
    }

private:
    void Add(Change change)
    {
        ++(change == Change::Added ? added : change == Change::Removed ? removed : changed);
    }

    int added = 0;
    int removed = 0;
    int changed = 0;
};

std::string CountsOf(const std::vector<Difference>& differences)
{
    Counts counts;
    for (const Difference& difference : differences)
    {
        counts.Add(difference);
    }
    return counts.Text();
}

/// Escapes what Markdown would read as markup.
std::string Escape(const std::string& text)
{
    std::string escaped;
    for (const char c : source::ToPrintable(text))
    {
        if (std::strchr("\\`*_<>[]|#~", c) != nullptr)
        {
            escaped += '\\';
        }
        escaped += c;
    }
    return escaped;
}

void WriteText(Writer& writer, const char* key, const std::string& text)
{
    writer.Key(key);
    writer.String(text.data(), static_cast<rapidjson::SizeType>(text.size()));
}

void WriteDetail(Writer& writer, const Detail& detail)
{
    writer.StartObject();
    WriteText(writer, "change", WordOf(detail.change));
    WriteText(writer, "what", detail.what);
    WriteText(writer, "before", detail.before);
    WriteText(writer, "after", detail.after);
    writer.EndObject();
}

void WriteDifference(Writer& writer, const Difference& difference)
{
    writer.StartObject();
    WriteText(writer, "subject", WordOf(difference.subject));
    WriteText(writer, "change", WordOf(difference.change));
    WriteText(writer, "name", difference.name);
    writer.Key("id");
    writer.Uint(difference.id);
    WriteText(writer, "description", difference.description);
    writer.Key("details");
    writer.StartArray();
    for (const Detail& detail : difference.details)
    {
        WriteDetail(writer, detail);
    }
    writer.EndArray();
    writer.EndObject();
}

} // namespace

std::string ToText(const std::vector<Difference>& differences)
{
    std::string text;
    const char* title = "";
    for (const Difference& difference : differences)
    {
        if (std::strcmp(title, TitleOf(difference.subject)) != 0)
        {
            title = TitleOf(difference.subject);
            text += std::string(title) + "\n";
        }
        if (!IsWhole(difference))
        {
            text += std::string("  ") + MarkOf(difference.change) +
                    source::ToPrintable(NameOf(difference) + Behind(difference)) + "\n";
        }
        for (const Detail& detail : difference.details)
        {
            text += std::string(IsWhole(difference) ? "  " : "      ") + MarkOf(detail.change) +
                    source::ToPrintable(DescribeDetail(detail)) + "\n";
        }
    }
    return differences.empty() ? "" : text + CountsOf(differences) + "\n";
}

std::string ToMarkdown(const std::vector<Difference>& differences, const std::string& before,
                       const std::string& after)
{
    std::string text = "### " + Escape(before) + kArrow + Escape(after) + "\n\n";
    if (differences.empty())
    {
        return text + "No differences.\n";
    }
    text += CountsOf(differences) + "\n";
    const char* title = "";
    for (const Difference& difference : differences)
    {
        if (std::strcmp(title, TitleOf(difference.subject)) != 0)
        {
            title = TitleOf(difference.subject);
            text += std::string("\n**") + title + "**\n\n";
        }
        if (!IsWhole(difference))
        {
            text += std::string("- ") +
                    (difference.change == Change::Reordered
                         ? ""
                         : std::string(WordOf(difference.change)) + " ") +
                    "**" + Escape(NameOf(difference)) + "**" + Escape(Behind(difference)) + "\n";
        }
        for (const Detail& detail : difference.details)
        {
            const bool hasWord = detail.change == Change::Added || detail.change == Change::Removed;
            text += std::string(IsWhole(difference) ? "- " : "  - ") +
                    (hasWord ? std::string(WordOf(detail.change)) + " " : "") +
                    Escape(DescribeDetail(detail)) + "\n";
        }
    }
    return text;
}

std::string ToJson(const std::vector<Difference>& differences, const std::string& before,
                   const std::string& after)
{
    rapidjson::StringBuffer buffer;
    Writer writer(buffer);
    writer.StartObject();
    WriteText(writer, "before", before);
    WriteText(writer, "after", after);
    writer.Key("differences");
    writer.StartArray();
    for (const Difference& difference : differences)
    {
        WriteDifference(writer, difference);
    }
    writer.EndArray();
    writer.EndObject();
    return std::string(buffer.GetString(), buffer.GetSize()) + "\n";
}

} // namespace vell::diff
