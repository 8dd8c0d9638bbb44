// VELL: data-driven hierarchical state machines.
// tools/check/OutputData.cpp: findings for programs.
#include "tools/check/Output.h"
#include "tools/source/Printable.h"
#include "tools/vell/System.h"

#include <rapidjson/prettywriter.h>
#include <rapidjson/stringbuffer.h>

#include <cstdint>
#include <map>

namespace vell::check
{
namespace
{

using Writer = rapidjson::PrettyWriter<rapidjson::StringBuffer>;

void Put(Writer& writer, const char* name, const std::string& text)
{
    writer.Key(name);
    writer.String(text.c_str(), static_cast<rapidjson::SizeType>(text.size()));
}

void Put(Writer& writer, const char* name, std::uint64_t number)
{
    writer.Key(name);
    writer.Uint64(number);
}

std::string MessageOf(const Finding& finding)
{
    return source::ToPrintable(finding.message + (finding.hint.empty() ? "" : "; " + finding.hint));
}

void PutSpan(Writer& writer, const source::Span& span)
{
    Put(writer, "line", span.begin.line);
    Put(writer, "column", span.begin.column);
    Put(writer, "endLine", span.end.line);
    Put(writer, "endColumn", span.end.column);
}

void PutFinding(Writer& writer, const CheckedDocument& document, const Finding& finding)
{
    writer.StartObject();
    Put(writer, "code", NameOf(finding.code));
    Put(writer, "severity", NameOf(GetEntry(finding.code).severity));
    if (finding.file != 0)
    {
        Put(writer, "path", source::ToPrintable(document.PathOf(finding.file)));
    }
    PutSpan(writer, finding.where);
    Put(writer, "message", source::ToPrintable(finding.message));
    if (!finding.hint.empty())
    {
        Put(writer, "hint", source::ToPrintable(finding.hint));
    }
    if (finding.hasOther)
    {
        writer.Key("other");
        writer.StartObject();
        if (finding.otherFile != 0)
        {
            Put(writer, "path", source::ToPrintable(document.PathOf(finding.otherFile)));
        }
        PutSpan(writer, finding.other);
        Put(writer, "message", source::ToPrintable(finding.otherNote));
        writer.EndObject();
    }
    writer.EndObject();
}

/// Gives the text with all that a URI does not take as it is in percent signs (RFC 3986).
std::string Escaped(const std::string& text)
{
    constexpr const char* kDigits = "0123456789ABCDEF";
    const std::string plain = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789-._~/";
    std::string escaped;
    for (const char c : text)
    {
        const auto byte = static_cast<unsigned char>(c);
        if (plain.find(c) != std::string::npos)
        {
            escaped += c;
        }
        else
        {
            escaped += {'%', kDigits[byte >> 4u], kDigits[byte & 15u]};
        }
    }
    return escaped;
}

void PutText(Writer& writer, const char* name, const std::string& text)
{
    writer.Key(name);
    writer.StartObject();
    Put(writer, "text", text);
    writer.EndObject();
}

void PutRule(Writer& writer, const CodeEntry& entry)
{
    writer.StartObject();
    Put(writer, "id", NameOf(entry.code));
    PutText(writer, "shortDescription", entry.title);
    PutText(writer, "fullDescription", entry.explanation);
    PutText(writer, "help", Explain(entry));
    writer.Key("defaultConfiguration");
    writer.StartObject();
    Put(writer, "level", NameOf(entry.severity));
    writer.EndObject();
    writer.EndObject();
}

void PutPhysicalLocation(Writer& writer, const std::string& path, const source::Span& span)
{
    writer.Key("physicalLocation");
    writer.StartObject();
    writer.Key("artifactLocation");
    writer.StartObject();
    const tool::Reference reference = tool::ReferenceOf(path);
    Put(writer, "uri", reference.start + Escaped(reference.path));
    writer.EndObject();
    writer.Key("region");
    writer.StartObject();
    Put(writer, "startLine", span.begin.line);
    Put(writer, "startColumn", span.begin.column);
    Put(writer, "endLine", span.end.line);
    Put(writer, "endColumn", span.end.column);
    writer.EndObject();
    writer.EndObject();
}

void PutResult(Writer& writer, const CheckedDocument& document, const Finding& finding,
               std::uint64_t ruleIndex)
{
    writer.StartObject();
    Put(writer, "ruleId", NameOf(finding.code));
    Put(writer, "ruleIndex", ruleIndex);
    Put(writer, "level", NameOf(GetEntry(finding.code).severity));
    PutText(writer, "message", MessageOf(finding));
    writer.Key("locations");
    writer.StartArray();
    writer.StartObject();
    PutPhysicalLocation(writer, document.PathOf(finding.file), finding.where);
    writer.EndObject();
    writer.EndArray();
    if (finding.hasOther)
    {
        writer.Key("relatedLocations");
        writer.StartArray();
        writer.StartObject();
        PutPhysicalLocation(writer, document.PathOf(finding.otherFile), finding.other);
        PutText(writer, "message", source::ToPrintable(finding.otherNote));
        writer.EndObject();
        writer.EndArray();
    }
    writer.EndObject();
}

void PutTool(Writer& writer, const std::string& version)
{
    writer.Key("tool");
    writer.StartObject();
    writer.Key("driver");
    writer.StartObject();
    Put(writer, "name", "vell check");
    Put(writer, "version", version);
    writer.Key("rules");
    writer.StartArray();
    for (const CodeEntry* entry : AllCodes())
    {
        PutRule(writer, *entry);
    }
    writer.EndArray();
    writer.EndObject();
    writer.EndObject();
}

std::string TextOf(const rapidjson::StringBuffer& buffer)
{
    return std::string(buffer.GetString(), buffer.GetSize()) + "\n";
}

} // namespace

std::string ToJson(const CheckedDocuments& documents)
{
    rapidjson::StringBuffer buffer;
    Writer writer(buffer);
    writer.StartObject();
    writer.Key("documents");
    writer.StartArray();
    for (const CheckedDocument& document : documents)
    {
        writer.StartObject();
        Put(writer, "path", source::ToPrintable(document.path));
        writer.Key("findings");
        writer.StartArray();
        for (const Finding& finding : document.findings.list)
        {
            PutFinding(writer, document, finding);
        }
        writer.EndArray();
        writer.EndObject();
    }
    writer.EndArray();
    const Counts counts = Count(documents);
    Put(writer, "errors", counts.errors);
    Put(writer, "warnings", counts.warnings);
    Put(writer, "notes", counts.notes);
    writer.EndObject();
    return TextOf(buffer);
}

std::string ToSarif(const CheckedDocuments& documents, const std::string& version)
{
    std::map<Code, std::uint64_t> indices;
    for (const CodeEntry* entry : AllCodes())
    {
        indices.emplace(entry->code, indices.size());
    }
    rapidjson::StringBuffer buffer;
    Writer writer(buffer);
    writer.StartObject();
    Put(writer, "$schema", "https://json.schemastore.org/sarif-2.1.0.json");
    Put(writer, "version", "2.1.0");
    writer.Key("runs");
    writer.StartArray();
    writer.StartObject();
    PutTool(writer, version);
    Put(writer, "columnKind", "unicodeCodePoints");
    writer.Key("results");
    writer.StartArray();
    for (const CheckedDocument& document : documents)
    {
        for (const Finding& finding : document.findings.list)
        {
            PutResult(writer, document, finding, indices[finding.code]);
        }
    }
    writer.EndArray();
    writer.EndObject();
    writer.EndArray();
    writer.EndObject();
    return TextOf(buffer);
}

} // namespace vell::check
