// VELL: data-driven hierarchical state machines.
// tests/tools/SarifTest.cpp: the files that findings for programs name.
#include "tools/check/Output.h"

#include <gtest/gtest.h>
#include <rapidjson/document.h>
#include <rapidjson/pointer.h>

#include <string>
#include <utility>
#include <vector>

namespace vell::test
{
namespace
{

/// The reference to a document with one finding, of the path `path`.
std::string UriOf(const std::string& path)
{
    check::CheckedDocuments documents(1);
    documents[0].path = path;
    documents[0].findings.Add(check::Code::Empty, {}, "it is empty");
    rapidjson::Document log;
    log.Parse(check::ToSarif(documents, "1.0").c_str());
    const rapidjson::Value* uri =
        rapidjson::Pointer("/runs/0/results/0/locations/0/physicalLocation/artifactLocation/uri")
            .Get(log);
    return uri == nullptr ? "none" : uri->GetString();
}

} // namespace

TEST(Sarif, NamesAFileByAReference)
{
    const std::vector<std::pair<std::string, std::string>> cases
    {
        {"a.json", "a.json"},
            {"../the hero/h\u00e9ros#1.json", "../the%20hero/h%C3%A9ros%231.json"},
            {"a:b.json", "a%3Ab.json"},
#if defined(_WIN32)
            {"heroes\\a.json", "heroes/a.json"},
            {"C:\\the hero\\a.json", "file:///C:/the%20hero/a.json"},
            {"c:/heroes/a.json", "file:///c:/heroes/a.json"},
            {"\\\\server\\share\\a b.json", "file://server/share/a%20b.json"},
            {"\\\\?\\C:\\heroes\\a.json", "file:///C:/heroes/a.json"},
            {"\\\\?\\UNC\\server\\share\\a.json", "file://server/share/a.json"},
#else
            {"/tmp/a b.json", "file:///tmp/a%20b.json"},
            {"/tmp/C:\\a.json", "file:///tmp/C%3A%5Ca.json"},
#endif
    };
    for (const auto& [path, uri] : cases)
    {
        EXPECT_EQ(UriOf(path), uri) << path;
    }
}

} // namespace vell::test
